#include "views/CellThumbnails.h"

#include "views/BitmapImage.h"

#include <algorithm>

namespace kelvara {

CellThumbnails::CellThumbnails(ThumbnailService& service, std::function<void(const FileURL&)> onChange)
    : m_service{service}, m_onChange{std::move(onChange)} {}

void CellThumbnails::show(const std::vector<FileURL>& urls, int pixelSize) {
    m_pixelSize = pixelSize;
    std::unordered_map<FileURL, Entry> shown;
    shown.reserve(urls.size());
    for (const auto& url : urls) {
        const auto [place, isNew] = shown.try_emplace(url);
        if (!isNew) continue;
        if (const auto known = m_entries.find(url); known != m_entries.end()) {
            place->second = std::move(known->second);
            if (place->second.pixelSize == pixelSize) continue;
        }
        load(url, place->second, pixelSize);
    }
    m_entries = std::move(shown);
}

void CellThumbnails::reload() {
    for (auto& [url, entry] : m_entries) load(url, entry, m_pixelSize);
}

void CellThumbnails::load(const FileURL& url, Entry& entry, int pixelSize) {
    entry.pixelSize = pixelSize;
    entry.quick = {};
    entry.tier = {};
    entry.awaitsQuick = entry.awaitsTier = false;
    if (const auto picture = m_service.cachedThumbnail(url, pixelSize)) {
        entry.thumbnail = {wrapped(picture), true};
        return;
    }
    auto& shown = entry.thumbnail;
    shown.isFinal = false;
    if (shown.picture.isNull()) shown.picture = wrapped(m_service.largestCachedThumbnail(url));
    if (shown.picture.isNull()) shown.picture = wrapped(m_service.cachedQuickThumbnail(url));
    if (shown.picture.isNull()) {
        entry.awaitsQuick = true;
        entry.quick = m_service.quickThumbnail(
            url, [this, url](const auto& picture) { receive(url, picture, Kind::quick); });
    }
    entry.awaitsTier = true;
    entry.tier = m_service.thumbnail(url, pixelSize,
                                     [this, url](const auto& picture) { receive(url, picture, Kind::tier); });
}

void CellThumbnails::receive(const FileURL& url, const BitmapPtr& picture, Kind kind) {
    const auto found = m_entries.find(url);
    if (found == m_entries.end()) return;
    auto& entry = found->second;
    auto& shown = entry.thumbnail;
    if (kind == Kind::tier) {
        entry.awaitsTier = false;
        // The quick picture is no news any more.
        if (picture) entry.awaitsQuick = false, entry.quick = {};
    } else {
        entry.awaitsQuick = false;
    }
    if (picture && (kind == Kind::tier || shown.picture.isNull())) shown.picture = wrapped(picture);
    shown.isFinal = !entry.awaitsTier && !entry.awaitsQuick;
    m_onChange(url);
}

const CellThumbnails::Thumbnail& CellThumbnails::operator[](const FileURL& url) const {
    static const Thumbnail none;
    const auto found = m_entries.find(url);
    return found == m_entries.end() ? none : found->second.thumbnail;
}

bool CellThumbnails::isLoading() const {
    return std::any_of(m_entries.begin(), m_entries.end(),
                       [](const auto& entry) { return !entry.second.thumbnail.isFinal; });
}

} // namespace kelvara
