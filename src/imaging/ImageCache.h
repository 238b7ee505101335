#pragma once

#include "imaging/Bitmap.h"

#include <cstddef>
#include <functional>
#include <iterator>
#include <list>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

namespace kelvara {

/// Decoded images by key, the least recently used forgotten first. The limits hold for the bytes of the
/// pixels and, if not 0, for the number of images. Thread-safe.
class ImageCache {
public:
    explicit ImageCache(std::size_t costLimit, std::size_t countLimit = 0)
        : m_costLimit{costLimit}, m_countLimit{countLimit} {}
    ImageCache(const ImageCache&) = delete;
    ImageCache& operator=(const ImageCache&) = delete;

    /// Null when there is none; a hit counts as a use.
    [[nodiscard]] BitmapPtr find(std::string_view key);
    [[nodiscard]] bool contains(std::string_view key) const;

    /// Null removes the key. An image larger than the cost limit is not kept.
    void store(std::string_view key, BitmapPtr image);
    void clear();
    /// Down to half of the bytes it holds, for when the system needs them more.
    void shrink();

    [[nodiscard]] std::size_t totalCost() const;
    [[nodiscard]] std::size_t count() const;

private:
    struct Entry {
        std::string key;
        BitmapPtr image;
    };
    using Entries = std::list<Entry>;

    void dropLast(Entries& dropped) { drop(std::prev(m_entries.end()), dropped); }
    /// Moves an entry out to `dropped`, where its pixels outlive the lock.
    void drop(Entries::iterator entry, Entries& dropped);

    const std::size_t m_costLimit;
    const std::size_t m_countLimit;
    mutable std::mutex m_mutex;
    Entries m_entries;                                               // most recently used first
    std::unordered_map<std::string_view, Entries::iterator> m_index; // keys are views into the entries
    std::size_t m_cost = 0;
};

} // namespace kelvara
