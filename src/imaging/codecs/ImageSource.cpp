#include "imaging/codecs/ImageSource.h"

#include "imaging/codecs/ByteSource.h"
#include "imaging/codecs/HeifSource.h"
#include "imaging/codecs/JpegSource.h"
#include "imaging/codecs/PngSource.h"
#include "imaging/codecs/RawSource.h"
#include "imaging/codecs/VideoSource.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace kelvara {
namespace {

enum class Container { jpeg, png, heif, video, rawOrUnknown };

/// Of the family whose files begin with a box named "ftyp" and the brand of what they hold.
Container byBrand(std::string_view brand) {
    constexpr std::array<std::string_view, 11> images{"heic", "heix", "heim", "heis", "hevc", "hevx",
                                                      "mif1", "mif2", "msf1", "avif", "avis"};
    if (std::ranges::find(images, brand) != images.end()) return Container::heif;
    return brand == "crx " ? Container::rawOrUnknown : Container::video;
}

Container recognise(std::string_view start) {
    if (start.starts_with("\xFF\xD8\xFF")) return Container::jpeg;
    if (start.starts_with("\x89PNG\r\n\x1A\n")) return Container::png;
    if (start.substr(4, 4) == "ftyp") return byBrand(start.substr(8, 4));
    // Films of older cameras begin with other boxes.
    constexpr std::array<std::string_view, 5> boxes{"moov", "mdat", "wide", "free", "skip"};
    if (std::ranges::find(boxes, start.substr(4, 4)) != boxes.end()) return Container::video;
    if (start.starts_with("RIFF") && start.substr(8, 3) == "AVI") return Container::video;
    // Transport streams: packets of 188 bytes that begin with 'G', on camcorders after a time of 4 bytes.
    const auto isSynchronised = [start](std::size_t first, std::size_t distance) {
        return start.size() > first + distance && start[first] == 'G' && start[first + distance] == 'G';
    };
    if (isSynchronised(0, 188) || isSynchronised(4, 192)) return Container::video;
    return Container::rawOrUnknown;
}

} // namespace

std::unique_ptr<ImageSource> ImageSource::open(const FileURL& url) {
    const auto file = ByteSource::ofFile(url);
    if (!file) return nullptr;
    std::array<std::uint8_t, 256> bytes{};
    const auto count = file->read(0, bytes);
    constexpr std::size_t fewest = 12;
    if (count < fewest) return nullptr;
    switch (recognise({reinterpret_cast<const char*>(bytes.data()), count})) {
    case Container::jpeg:
        return openJpeg(ByteRange{file});
    case Container::png:
        return openPng(ByteRange{file});
    case Container::heif:
        return openHeif(url);
    case Container::video:
        return openVideo(url);
    case Container::rawOrUnknown:
        return openRaw(url, ByteRange{file});
    }
    return nullptr;
}

bool isBetterPreview(PixelSize candidate, PixelSize best, std::optional<int> maximum) {
    const int side = candidate.longestSide();
    const int bestSide = best.longestSide();
    if (maximum && bestSide >= *maximum) return side >= *maximum && side < bestSide;
    return side > bestSide;
}

} // namespace kelvara
