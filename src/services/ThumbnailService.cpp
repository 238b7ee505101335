#include "services/ThumbnailService.h"

#include "imaging/ImageDecoder.h"

#include <string>
#include <utility>

namespace kelvara {

/// What a decode needs after the service may be gone.
struct ThumbnailService::Shared {
    AsyncLimiter cardReads{cardReadLimit};
    Decoding decoding;
};

namespace {

std::string tierKey(int tier, const FileURL& url) {
    auto key = std::to_string(tier);
    key.reserve(key.size() + 1 + url.path().size());
    key += '|';
    key += url.path();
    return key;
}

std::string quickKey(const FileURL& url) { return "exif|" + url.path(); }

} // namespace

ThumbnailService::Decoding ThumbnailService::Decoding::ofFiles() {
    return {.thumbnail =
                [](const FileURL& url, int maxPixelSize, const std::stop_token& stop) {
                    return ImageDecoder::prepareForDisplay(
                        ImageDecoder::decodeOriginal(url, maxPixelSize, stop), stop);
                },
            .quickThumbnail =
                [](const FileURL& url, const std::stop_token& stop) {
                    return ImageDecoder::embeddedThumbnail(url, stop);
                }};
}

ThumbnailService::ThumbnailService(ImageExecutors executors, Decoding decoding)
    : m_executors{executors}, m_shared{std::make_shared<Shared>()}, m_loader{cacheBytes, 0, executors.visible,
                                                                             executors.prefetch} {
    m_shared->decoding = std::move(decoding);
}

int ThumbnailService::tier(int pixelSize) {
    for (const int tier : tiers) {
        if (tier >= pixelSize) return tier;
    }
    return tiers.back();
}

BitmapPtr ThumbnailService::cachedThumbnail(const FileURL& url, int pixelSize) const {
    const int lowest = tier(pixelSize);
    for (const int tier : tiers) {
        if (tier < lowest) continue;
        if (auto image = m_loader.cache().find(tierKey(tier, url))) return image;
    }
    return nullptr;
}

BitmapPtr ThumbnailService::largestCachedThumbnail(const FileURL& url) const {
    for (auto tier = tiers.rbegin(); tier != tiers.rend(); ++tier) {
        if (auto image = m_loader.cache().find(tierKey(*tier, url))) return image;
    }
    return nullptr;
}

BitmapPtr ThumbnailService::cachedQuickThumbnail(const FileURL& url) const {
    return m_loader.cache().find(quickKey(url));
}

ImageRequest ThumbnailService::quickThumbnail(const FileURL& url, ImageCallback onMain) {
    auto work = [shared = m_shared, url](std::stop_token stop) {
        return quick(shared, url, std::move(stop));
    };
    return ImageRequest::load(m_loader, quickKey(url), ImageLoader::Priority::visible, std::move(work),
                              m_executors.main, std::move(onMain));
}

ImageRequest ThumbnailService::thumbnail(const FileURL& url, int pixelSize, ImageCallback onMain) {
    return ImageRequest::load(m_loader, tierKey(tier(pixelSize), url), ImageLoader::Priority::visible,
                              work(url, tier(pixelSize), AsyncLimiter::Priority::high), m_executors.main,
                              std::move(onMain));
}

void ThumbnailService::prefetch(std::span<const FileURL> urls, int pixelSize) {
    for (const auto& url : urls) {
        auto key = tierKey(tier(pixelSize), url);
        if (m_loader.cache().contains(key)) continue;
        m_loader.prefetch(std::move(key), work(url, tier(pixelSize), AsyncLimiter::Priority::low));
    }
}

void ThumbnailService::emptyCaches() { m_loader.forgetAll(); }

void ThumbnailService::shrinkCache() { m_loader.cache().shrink(); }

ImageLoader::Work ThumbnailService::work(const FileURL& url, int tier,
                                         AsyncLimiter::Priority priority) const {
    auto& resumeOn = priority == AsyncLimiter::Priority::high ? m_executors.visible : m_executors.prefetch;
    return [shared = m_shared, &resumeOn, url, tier, priority](std::stop_token stop) {
        return limited(shared, resumeOn, url, tier, priority, std::move(stop));
    };
}

Task<BitmapPtr> ThumbnailService::limited(std::shared_ptr<Shared> shared, Executor& resumeOn, FileURL url,
                                          int tier, AsyncLimiter::Priority priority, std::stop_token stop) {
    const bool isAdmitted = co_await shared->cardReads.acquire(priority, stop, resumeOn);
    if (!isAdmitted) co_return nullptr;
    BitmapPtr image;
    if (!stop.stop_requested()) image = shared->decoding.thumbnail(url, tier, stop);
    shared->cardReads.release();
    co_return image;
}

Task<BitmapPtr> ThumbnailService::quick(std::shared_ptr<Shared> shared, FileURL url, std::stop_token stop) {
    if (stop.stop_requested()) co_return nullptr;
    co_return shared->decoding.quickThumbnail(url, stop);
}

} // namespace kelvara
