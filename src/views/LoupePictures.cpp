#include "views/LoupePictures.h"

#include <utility>

namespace kelvara {

namespace {

constexpr int thumbnailSize = 1024; // pixels on the longer side
constexpr std::size_t thumbnailNeighbours = 3;
constexpr std::size_t fullNeighbours = 1;

} // namespace

LoupePictures::LoupePictures(LibraryViewModel& library, ThumbnailService& thumbnails,
                             PreviewService& previews, Executor& rendering, Executor& main,
                             std::function<void()> onChange)
    : m_library{library}, m_thumbnails{thumbnails}, m_previews{previews},
      m_onChange{std::move(onChange)}, m_halving{rendering, main} {}

void LoupePictures::load(const PhotoItem* item) {
    const auto url = item ? item->url : FileURL{};
    if (url == m_shown.url) return;
    m_item = item ? *item : PhotoItem{};
    begin();
}

void LoupePictures::reload() { begin(); }

void LoupePictures::begin() {
    m_quickRequest = {};
    m_thumbnailRequest = {};
    m_fullRequest = {};
    m_halving.cancel();
    m_shown = {};
    m_shown.url = m_item.url;
    if (m_item.url.isEmpty()) return;

    m_shown.isLoading = true;
    auto first = m_thumbnails.largestCachedThumbnail(m_item.url);
    if (!first) first = m_thumbnails.cachedQuickThumbnail(m_item.url);
    showThumbnail(first);
    if (const auto full = m_previews.cachedFullResolution(m_item.url)) return receiveFull(full);
    if (m_thumbnails.cachedThumbnail(m_item.url, thumbnailSize)) {
        prefetchThumbnails();
        return requestFull();
    }
    // Small as it is, it shows at once that the key was heard, and which photo this is.
    if (!first) {
        m_quickRequest =
            m_thumbnails.quickThumbnail(m_item.url, [this](const auto& bitmap) { receiveQuick(bitmap); });
    }
    m_thumbnailRequest = m_thumbnails.thumbnail(m_item.url, thumbnailSize,
                                                [this](const auto& bitmap) { receiveThumbnail(bitmap); });
}

void LoupePictures::showThumbnail(const BitmapPtr& bitmap) {
    // At most 1024 pixels, so halved while one waits.
    if (bitmap) m_shown.image = ImagePyramid::build(bitmap);
}

void LoupePictures::receiveQuick(const BitmapPtr& bitmap) {
    if (!bitmap || m_shown.image) return;
    showThumbnail(bitmap);
    m_onChange();
}

void LoupePictures::receiveThumbnail(const BitmapPtr& bitmap) {
    showThumbnail(bitmap);
    prefetchThumbnails();
    requestFull();
    m_onChange();
}

void LoupePictures::requestFull() {
    if (m_item.kind() == MediaKind::video) return end();
    m_fullRequest =
        m_previews.fullResolution(m_item.url, [this](const auto& bitmap) { receiveFull(bitmap); });
}

void LoupePictures::receiveFull(const BitmapPtr& bitmap) {
    prefetchFull();
    if (!bitmap) {
        end();
        return m_onChange();
    }
    m_halving.start([bitmap](const std::stop_token& stop) { return ImagePyramid::build(bitmap, stop); },
                    [this](std::shared_ptr<const ImagePyramid> image) {
                        m_shown.isFullResolution = image != nullptr;
                        if (image) m_shown.image = std::move(image);
                        end();
                        m_onChange();
                    });
}

void LoupePictures::end() {
    m_shown.isLoading = false;
    m_shown.isUnreadable = m_shown.image == nullptr && m_item.kind() != MediaKind::video;
}

void LoupePictures::prefetchThumbnails() {
    std::vector<FileURL> urls;
    for (const auto& item : m_library.neighbours(m_item.url, thumbnailNeighbours)) urls.push_back(item.url);
    m_thumbnails.prefetch(urls, thumbnailSize);
}

void LoupePictures::prefetchFull() {
    for (const auto& item : m_library.neighbours(m_item.url, fullNeighbours)) {
        if (item.kind() != MediaKind::video) m_previews.prefetch(item.url);
    }
}

} // namespace kelvara
