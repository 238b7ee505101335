#include "views/PresetPictures.h"

#include "views/BitmapImage.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace kelvara {

namespace {

constexpr auto patience = std::chrono::milliseconds{400};

std::string idOf(const PresetPictures::Preset& preset) { return preset ? preset->id : std::string{}; }

bool areSame(const PresetPictures::Preset& a, const PresetPictures::Preset& b) {
    return a == b || (a && b && a->revision == b->revision);
}

} // namespace

PresetPictures::PresetPictures(ThumbnailService& thumbnails, PresetTileService& tiles,
                               std::function<void()> onChange)
    : m_thumbnails{thumbnails}, m_tiles{tiles}, m_onChange{std::move(onChange)} {
    m_patience.setSingleShot(true);
    m_patience.setInterval(patience);
    QObject::connect(&m_patience, &QTimer::timeout, &m_patience, [this] {
        forgetOld();
        m_onChange();
    });
}

void PresetPictures::show(const FileURL& url, const std::vector<Preset>& presets, const QSize& pixels) {
    if (url != m_url || pixels != m_pixels) changePhoto(url, pixels);
    std::map<std::string, Entry> shown;
    m_order.clear();
    for (const auto& preset : presets) {
        const auto id = idOf(preset);
        const auto [place, isNew] = shown.try_emplace(id);
        if (!isNew) continue; // a favourite stands in two places
        m_order.push_back(id);
        if (const auto known = m_entries.find(id); known != m_entries.end())
            place->second = std::move(known->second);
        if (areSame(place->second.preset, preset)) continue;
        place->second.preset = preset;
        place->second.picture.isFinal = false;
        place->second.request = {};
    }
    m_entries = std::move(shown);
    if (m_entries.empty()) m_thumbnailRequest = {};
    if (!m_url.isEmpty() && !m_entries.empty()) loadThumbnail();
}

void PresetPictures::changePhoto(const FileURL& url, const QSize& pixels) {
    const bool isOther = url != m_url;
    m_url = url;
    m_pixels = pixels;
    m_thumbnail = nullptr;
    m_thumbnailRequest = {};
    for (auto& [id, entry] : m_entries) {
        entry.request = {};
        entry.picture.isFinal = false;
        entry.picture.isOld |= isOther;
    }
    if (m_url.isEmpty()) return forgetOld();
    // While one goes through photos quickly, the first pictures don't stay until the last.
    if (isOther && !m_patience.isActive()) m_patience.start();
}

void PresetPictures::reload() {
    const auto url = std::exchange(m_url, {});
    if (url.isEmpty()) return;
    changePhoto(url, m_pixels);
    if (!m_entries.empty()) loadThumbnail();
}

void PresetPictures::forgetOld() {
    for (auto& [id, entry] : m_entries) {
        if (entry.picture.isOld) entry.picture = {};
    }
}

void PresetPictures::loadThumbnail() {
    if (m_thumbnail) return loadMissing();
    if (m_thumbnailRequest.isPending()) return;
    const auto side = std::max(m_pixels.width(), m_pixels.height());
    m_thumbnail = m_thumbnails.cachedThumbnail(m_url, side);
    if (m_thumbnail) return loadMissing();
    m_thumbnailRequest = m_thumbnails.thumbnail(
        m_url, side, [this](BitmapPtr thumbnail) { didLoadThumbnail(std::move(thumbnail)); });
}

void PresetPictures::didLoadThumbnail(BitmapPtr thumbnail) {
    m_thumbnail = std::move(thumbnail);
    if (m_thumbnail) {
        loadMissing();
    } else {
        for (auto& [id, entry] : m_entries) entry.picture = {{}, false, true};
    }
    m_onChange();
}

int PresetPictures::longestSide() const {
    const QSizeF photo{QSize{m_thumbnail->width(), m_thumbnail->height()}};
    const auto fitted = photo.scaled(m_pixels, Qt::KeepAspectRatio);
    return std::max(qRound(std::max(fitted.width(), fitted.height())), 1);
}

void PresetPictures::loadMissing() {
    const auto side = longestSide();
    for (const auto& id : m_order) {
        auto& entry = m_entries.at(id);
        if (entry.picture.isFinal || entry.request.isPending()) continue;
        if (const auto ready = m_tiles.cached(m_url, side, entry.preset)) {
            entry.picture = {wrapped(ready), false, true};
            continue;
        }
        entry.request = m_tiles.tile(m_url, side, entry.preset, m_thumbnail,
                                     [this, id](const BitmapPtr& picture) { receive(id, picture); });
    }
}

void PresetPictures::receive(const std::string& id, const BitmapPtr& picture) {
    const auto found = m_entries.find(id);
    if (found == m_entries.end()) return;
    found->second.picture = {wrapped(picture), false, true};
    m_onChange();
}

const PresetPictures::Picture& PresetPictures::operator[](const Preset& preset) const {
    static const Picture none;
    const auto found = m_entries.find(idOf(preset));
    return found == m_entries.end() ? none : found->second.picture;
}

bool PresetPictures::isLoading() const {
    if (m_url.isEmpty()) return false;
    return std::ranges::any_of(m_entries, [](const auto& entry) { return !entry.second.picture.isFinal; });
}

} // namespace kelvara
