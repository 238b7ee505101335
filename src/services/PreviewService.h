#pragma once

#include "imaging/ImageExecutors.h"
#include "imaging/ImageLoader.h"
#include "imaging/ImageRequest.h"
#include "model/FileURL.h"
#include "services/ThumbnailService.h"

#include <functional>
#include <memory>
#include <stop_token>

namespace kelvara {

/// Images in full resolution for the single-image view, ready to draw in the screen's colours. Owned and
/// called on the main thread.
class PreviewService {
public:
    static constexpr std::size_t cacheBytes = std::size_t{640} * 1024 * 1024;
    static constexpr std::size_t cacheCount = 6;

    /// Runs on a decoding thread: the whole image prepared for display, null when it can't or should stop.
    using Decoding = std::function<BitmapPtr(const FileURL&, const std::stop_token&)>;
    [[nodiscard]] static Decoding decodingOfFiles();

    /// Everything handed in outlives it.
    PreviewService(ImageExecutors executors, const ThumbnailService& thumbnails,
                   Decoding decoding = decodingOfFiles());

    /// The full image or, failing that, the largest thumbnail there is.
    [[nodiscard]] BitmapPtr cachedImage(const FileURL& url) const;
    /// The full image and nothing less.
    [[nodiscard]] BitmapPtr cachedFullResolution(const FileURL& url) const;

    /// Overtakes whatever is being fetched ahead, this photo's own prefetch included.
    ImageRequest fullResolution(const FileURL& url, ImageCallback onMain);
    void prefetch(const FileURL& url);

    /// As `ThumbnailService::emptyCaches`.
    void emptyCaches();
    /// As `ThumbnailService::shrinkCache`.
    void shrinkCache();

private:
    [[nodiscard]] ImageLoader::Work work(const FileURL& url) const;

    ImageExecutors m_executors;
    const ThumbnailService& m_thumbnails;
    std::shared_ptr<const Decoding> m_decoding; // decodes that still run keep it
    ImageLoader m_loader;
};

} // namespace kelvara
