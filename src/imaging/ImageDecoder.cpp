#include "imaging/ImageDecoder.h"

#include "imaging/ColorTransform.h"
#include "imaging/DisplayColorSpace.h"
#include "imaging/Letterbox.h"
#include "model/MediaKind.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace kelvara::ImageDecoder {
namespace {

constexpr double previewTolerance = 0.9;
constexpr int quickThumbnailSize = 512;

bool isRaw(const FileURL& url) { return mediaKind(url.extension()) == MediaKind::raw; }

/// Memory that runs out, for a row or a profile, is one more reason for no image.
template <typename Decode> BitmapPtr orNothing(Decode decode) {
    try {
        return decode();
    } catch (const std::exception&) {
        return nullptr;
    }
}

BitmapPtr original(const FileURL& url, std::optional<int> maximum, const std::stop_token& stop, Depth depth) {
    if (maximum && *maximum < 1) return nullptr;
    const auto source = ImageSource::open(url);
    if (!source) return nullptr;
    auto target = maximum;
    if (const auto size = source->pixelSize(); size && !size->isEmpty())
        target = std::min(target.value_or(size->longestSide()), size->longestSide());
    if (isRaw(url)) {
        const auto preview = source->storedPreview(maximum, stop);
        if (preview && (!target || preview->size().longestSide() >= previewTolerance * *target))
            return preview;
    }
    if (stop.stop_requested()) return nullptr;
    return depth == Depth::full ? source->deepImage(target, stop) : source->image(target, stop);
}

BitmapPtr exported(const FileURL& url, std::optional<int> maximum, const std::stop_token& stop, Depth depth) {
    if ((maximum && *maximum < 1) || mediaKind(url.extension()) == MediaKind::video) return nullptr;
    const auto source = ImageSource::open(url);
    if (!source || stop.stop_requested()) return nullptr;
    if (source->isSensorData()) return source->storedPreview(maximum, stop);
    return depth == Depth::full ? source->deepImage(maximum, stop) : source->image(maximum, stop);
}

BitmapPtr storedThumbnail(const FileURL& url, const std::stop_token& stop) {
    // Nor has a film any, and opening one takes long.
    const auto kind = mediaKind(url.extension());
    if (kind == MediaKind::raw || kind == MediaKind::video) return nullptr;
    const auto source = ImageSource::open(url);
    if (!source) return nullptr;
    auto preview = source->storedPreview(quickThumbnailSize, stop);
    return prepareForDisplay(cropLetterbox(std::move(preview), source->pixelSize(), source->orientation()),
                             stop);
}

} // namespace

BitmapPtr decodeOriginal(const FileURL& url, std::optional<int> maximum, const std::stop_token& stop,
                         Depth depth) {
    return orNothing([&] { return original(url, maximum, stop, depth); });
}

BitmapPtr decodeForExport(const FileURL& url, std::optional<int> maximum, const std::stop_token& stop,
                          Depth depth) {
    return orNothing([&] { return exported(url, maximum, stop, depth); });
}

BitmapPtr embeddedThumbnail(const FileURL& url, const std::stop_token& stop) {
    return orNothing([&] { return storedThumbnail(url, stop); });
}

BitmapPtr cropLetterbox(BitmapPtr preview, std::optional<PixelSize> fileSize, Orientation orientation) {
    if (!preview || !fileSize || fileSize->isEmpty()) return nullptr;
    const auto part = pictureInside(preview->size(), orientation.applied(*fileSize));
    if (part.size == preview->size()) return preview;
    return cut(*preview, part);
}

BitmapPtr prepareForDisplay(BitmapPtr bitmap, const std::stop_token& stop) {
    return orNothing(
        [&] { return converted(std::move(bitmap), DisplayColorSpace::current(), PixelFormat::bgrx8, stop); });
}

} // namespace kelvara::ImageDecoder
