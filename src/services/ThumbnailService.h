#pragma once

#include "imaging/AsyncLimiter.h"
#include "imaging/ImageExecutors.h"
#include "imaging/ImageLoader.h"
#include "imaging/ImageRequest.h"
#include "model/FileURL.h"

#include <array>
#include <memory>
#include <span>
#include <stop_token>

namespace kelvara {

/// The thumbnails of grid and filmstrip, in three sizes, ready to draw in the screen's colours; of videos a
/// frame.
///
/// Full decodes are admitted two at a time, what is on screen before what is only fetched ahead. Owned and
/// called on the main thread; look-ups never wait for a decode.
class ThumbnailService {
public:
    /// The longest sides of thumbnails, in pixels.
    static constexpr std::array<int, 3> tiers{256, 512, 1024};
    static constexpr std::size_t cacheBytes = std::size_t{512} * 1024 * 1024;
    static constexpr int cardReadLimit = 2;

    /// How a file becomes a bitmap; both run on a decoding thread and give null when they can't or should
    /// stop.
    struct Decoding {
        /// The image prepared for display, its longest side at most `maxPixelSize`.
        std::function<BitmapPtr(const FileURL&, int maxPixelSize, const std::stop_token&)> thumbnail;
        /// The thumbnail stored in the file.
        std::function<BitmapPtr(const FileURL&, const std::stop_token&)> quickThumbnail;

        /// From the files themselves.
        [[nodiscard]] static Decoding ofFiles();
    };

    /// The executors outlive it.
    explicit ThumbnailService(ImageExecutors executors, Decoding decoding = Decoding::ofFiles());

    /// The first tier of at least `pixelSize` pixels, or the largest.
    [[nodiscard]] static int tier(int pixelSize);

    /// Of the request's tier or a larger one, never of a smaller one, which would look soft.
    [[nodiscard]] BitmapPtr cachedThumbnail(const FileURL& url, int pixelSize) const;
    [[nodiscard]] BitmapPtr largestCachedThumbnail(const FileURL& url) const;
    [[nodiscard]] BitmapPtr cachedQuickThumbnail(const FileURL& url) const;

    /// The thumbnail that the camera stored in the file, without the black bars that it may have; quick and
    /// not limited. None for RAW files and videos.
    ImageRequest quickThumbnail(const FileURL& url, ImageCallback onMain);
    /// `pixelSize` is the wanted longest side in screen pixels.
    ImageRequest thumbnail(const FileURL& url, int pixelSize, ImageCallback onMain);

    /// Fills the cache in the order of `urls`, after everything that is visible; skips what is there.
    void prefetch(std::span<const FileURL> urls, int pixelSize);

    /// Forgets all images, also those being decoded now, as their colours belong to the old screen: who waits
    /// for one gets it, but it is not kept.
    void emptyCaches();
    /// Gives half of the memory of its images back, those first that were not used for longest.
    void shrinkCache();

private:
    struct Shared;
    [[nodiscard]] ImageLoader::Work work(const FileURL& url, int tier, AsyncLimiter::Priority priority) const;
    static Task<BitmapPtr> limited(std::shared_ptr<Shared> shared, Executor& resumeOn, FileURL url, int tier,
                                   AsyncLimiter::Priority priority, std::stop_token stop);
    static Task<BitmapPtr> quick(std::shared_ptr<Shared> shared, FileURL url, std::stop_token stop);

    ImageExecutors m_executors;
    std::shared_ptr<Shared> m_shared; // decodes that still run keep it
    ImageLoader m_loader;
};

} // namespace kelvara
