#include "imaging/ImageCache.h"

#include <utility>

namespace kelvara {

BitmapPtr ImageCache::find(std::string_view key) {
    const std::lock_guard lock{m_mutex};
    const auto found = m_index.find(key);
    if (found == m_index.end()) return nullptr;
    m_entries.splice(m_entries.begin(), m_entries, found->second);
    return found->second->image;
}

bool ImageCache::contains(std::string_view key) const {
    const std::lock_guard lock{m_mutex};
    return m_index.contains(key);
}

void ImageCache::store(std::string_view key, BitmapPtr image) {
    Entries dropped; // large blocks of memory are given back after the lock is gone
    const std::lock_guard lock{m_mutex};
    if (const auto found = m_index.find(key); found != m_index.end()) drop(found->second, dropped);
    if (!image || image->byteCount() > m_costLimit) return;
    m_cost += image->byteCount();
    m_entries.push_front({std::string{key}, std::move(image)});
    m_index.emplace(m_entries.front().key, m_entries.begin());
    while (m_cost > m_costLimit || (m_countLimit > 0 && m_entries.size() > m_countLimit)) dropLast(dropped);
}

void ImageCache::shrink() {
    Entries dropped;
    const std::lock_guard lock{m_mutex};
    const auto most = m_cost / 2;
    while (m_cost > most) dropLast(dropped);
}

void ImageCache::clear() {
    Entries dropped;
    const std::lock_guard lock{m_mutex};
    m_index.clear();
    dropped.swap(m_entries);
    m_cost = 0;
}

std::size_t ImageCache::totalCost() const {
    const std::lock_guard lock{m_mutex};
    return m_cost;
}

std::size_t ImageCache::count() const {
    const std::lock_guard lock{m_mutex};
    return m_entries.size();
}

void ImageCache::drop(Entries::iterator entry, Entries& dropped) {
    m_index.erase(entry->key);
    m_cost -= entry->image->byteCount();
    dropped.splice(dropped.end(), m_entries, entry);
}

} // namespace kelvara
