#include "app/ImageServices.h"

#include <algorithm>
#include <thread>

namespace kelvara {

namespace {
/// Of edited thumbnails: some 1,500 of usual size.
constexpr std::size_t drawnThumbnailBytes = std::size_t{256} * 1024 * 1024;

/// More than two even on small machines: two read thumbnails, and the photo that is opened waits for neither.
unsigned decodingThreads() { return std::clamp(std::thread::hardware_concurrency(), 3U, 8U); }
} // namespace

ImageServices::ImageServices(Executor& main)
    : m_decoding{decodingThreads()}, m_rendering{2}, m_lanes{m_decoding, decodingThreads() - 1},
      m_renderingLanes{m_rendering, 1}, m_executors{m_lanes.urgent(), m_lanes.background(), main},
      m_thumbnails{m_executors}, m_previews{m_executors, m_thumbnails}, m_metadata{m_executors},
      m_presetTiles{rendering(), main}, m_thumbnailRenderer{m_renderingLanes.background(), main,
                                                            drawnThumbnailBytes} {}

ImageServices::~ImageServices() {
    // The threads first, because what they are at still ends in the services; but the pools stay, because the
    // services withdraw what waits and hand that to them.
    m_rendering.end();
    m_decoding.end();
}

void ImageServices::emptyCaches() {
    emptyPictureCaches();
    m_metadata.emptyCache();
}

void ImageServices::emptyPictureCaches() {
    m_thumbnails.emptyCaches();
    m_previews.emptyCaches();
    m_presetTiles.emptyCaches();
    m_thumbnailRenderer.emptyCaches();
}

void ImageServices::shrinkCaches() {
    m_thumbnails.shrinkCache();
    m_previews.shrinkCache();
    m_presetTiles.shrinkCache();
    m_thumbnailRenderer.shrinkCache();
}

} // namespace kelvara
