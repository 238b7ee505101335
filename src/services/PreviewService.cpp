#include "services/PreviewService.h"

#include "imaging/ImageDecoder.h"

#include <string>
#include <utility>

namespace kelvara {
namespace {

std::string fullKey(const FileURL& url) { return "full|" + url.path(); }

Task<BitmapPtr> decode(std::shared_ptr<const PreviewService::Decoding> decoding, FileURL url,
                       std::stop_token stop) {
    co_return (*decoding)(url, stop);
}

} // namespace

PreviewService::Decoding PreviewService::decodingOfFiles() {
    return [](const FileURL& url, const std::stop_token& stop) {
        return ImageDecoder::prepareForDisplay(ImageDecoder::decodeOriginal(url, std::nullopt, stop), stop);
    };
}

PreviewService::PreviewService(ImageExecutors executors, const ThumbnailService& thumbnails,
                               Decoding decoding)
    : m_executors{executors}, m_thumbnails{thumbnails},
      m_decoding{std::make_shared<const Decoding>(std::move(decoding))}, m_loader{cacheBytes, cacheCount,
                                                                                  executors.visible,
                                                                                  executors.prefetch} {}

BitmapPtr PreviewService::cachedImage(const FileURL& url) const {
    if (auto image = m_loader.cache().find(fullKey(url))) return image;
    return m_thumbnails.largestCachedThumbnail(url);
}

BitmapPtr PreviewService::cachedFullResolution(const FileURL& url) const {
    return m_loader.cache().find(fullKey(url));
}

ImageRequest PreviewService::fullResolution(const FileURL& url, ImageCallback onMain) {
    return ImageRequest::load(m_loader, fullKey(url), ImageLoader::Priority::visible, work(url),
                              m_executors.main, std::move(onMain));
}

void PreviewService::prefetch(const FileURL& url) { m_loader.prefetch(fullKey(url), work(url)); }

void PreviewService::emptyCaches() { m_loader.forgetAll(); }

void PreviewService::shrinkCache() { m_loader.cache().shrink(); }

ImageLoader::Work PreviewService::work(const FileURL& url) const {
    return
        [decoding = m_decoding, url](std::stop_token stop) { return decode(decoding, url, std::move(stop)); };
}

} // namespace kelvara
