#include "views/CellThumbnails.h"

#include "presets/EditStore.h"
#include "presets/PresetRenderer.h"
#include "views/BitmapImage.h"

#include <algorithm>

namespace kelvara {

CellThumbnails::CellThumbnails(const ThumbnailSources& sources, std::function<void(const FileURL&)> onChange)
    : m_sources{sources}, m_onChange{std::move(onChange)}, m_editSubscription{sources.edits.observe(
                                                               {EditProperty::adjustments},
                                                               [this](const auto&) { didEdit(); })} {}

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

LightAdjustments CellThumbnails::editsOf(const FileURL& url) const {
    // A video may share the name of a photo, and with it the edits, which are not for it.
    const auto kind = mediaKind(url.extension());
    return kind && isStillImage(*kind) ? m_sources.edits.adjustments(url) : LightAdjustments{};
}

void CellThumbnails::load(const FileURL& url, Entry& entry, int pixelSize) {
    entry.pixelSize = pixelSize;
    entry.quick = {};
    entry.tier = {};
    entry.wanted.edits = editsOf(url);
    auto& service = m_sources.service;
    if (auto picture = service.cachedThumbnail(url, pixelSize)) {
        entry.wanted.plain = std::move(picture);
        return draw(url, entry);
    }
    auto& plain = entry.wanted.plain;
    if (!plain) plain = service.largestCachedThumbnail(url);
    if (!plain) plain = service.cachedQuickThumbnail(url);
    if (!plain) {
        entry.quick = service.quickThumbnail(
            url, [this, url](const auto& picture) { receive(url, picture, Kind::quick); });
    }
    entry.tier = service.thumbnail(url, pixelSize,
                                   [this, url](const auto& picture) { receive(url, picture, Kind::tier); });
    draw(url, entry);
}

void CellThumbnails::receive(const FileURL& url, const BitmapPtr& picture, Kind kind) {
    const auto found = m_entries.find(url);
    if (found == m_entries.end()) return;
    auto& entry = found->second;
    if (picture && (kind == Kind::tier || !entry.wanted.plain)) entry.wanted.plain = picture;
    if (picture && kind == Kind::tier) entry.quick = {}; // no news any more
    draw(url, entry);
    m_onChange(url);
}

void CellThumbnails::draw(const FileURL& url, Entry& entry) {
    auto& shown = entry.thumbnail;
    const auto& plain = entry.wanted.plain;
    const bool isNew = plain && entry.drawn != entry.wanted;
    if (isNew && entry.wanted.edits.isEmpty()) {
        entry.drawing = {};
        entry.drawn = entry.wanted;
        shown.picture = wrapped(plain);
    } else if (isNew && !entry.drawing.isPending()) {
        entry.drawn = entry.wanted;
        const auto look = *m_sources.edits.exportLook(std::nullopt, url);
        if (const auto cached = m_sources.renderer.cached(look, url, plain)) {
            shown.picture = wrapped(cached);
        } else {
            entry.drawing = m_sources.renderer.render(
                look, url, plain, [this, url](const auto& picture) { receiveDrawn(url, picture); });
        }
    }
    shown.isFinal = !entry.quick.isPending() && !entry.tier.isPending() && !entry.drawing.isPending();
}

void CellThumbnails::receiveDrawn(const FileURL& url, const BitmapPtr& picture) {
    const auto found = m_entries.find(url);
    if (found == m_entries.end()) return;
    auto& entry = found->second;
    auto& shown = entry.thumbnail.picture;
    // Without memory to draw, the photo itself is better than nothing.
    if (picture || shown.isNull()) shown = wrapped(picture ? picture : entry.drawn.plain);
    draw(url, entry); // what has come meanwhile
    m_onChange(url);
}

void CellThumbnails::didEdit() {
    std::vector<FileURL> changed;
    for (auto& [url, entry] : m_entries) {
        const auto now = editsOf(url);
        if (now == entry.wanted.edits) continue;
        entry.wanted.edits = now;
        draw(url, entry);
        changed.push_back(url);
    }
    for (const auto& url : changed) m_onChange(url);
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
