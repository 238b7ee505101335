#include "imaging/metadata/LoadedMetadata.h"

#include "imaging/codecs/Exiv2Setup.h"
#include "imaging/codecs/ImageSource.h"
#include "imaging/codecs/RangeIo.h"
#include "imaging/codecs/RawLayout.h"
#include "imaging/metadata/OtherLibraries.h"
#include "imaging/metadata/TiffExcerpt.h"
#include "model/MediaKind.h"

#include <exception>
#include <memory>
#include <string_view>
#include <utility>

namespace kelvara {
namespace {

/// RAF files keep their metadata in the preview.
ByteRange describedPart(const ByteRange& file) {
    constexpr std::string_view rafSignature{"FUJIFILM"};
    const auto start = file.bytes(0, rafSignature.size());
    if (std::string_view{reinterpret_cast<const char*>(start.data()), start.size()} != rafSignature)
        return file;
    const auto layout = RawLayout::read(file);
    return layout.previews.empty() ? file : layout.previews.front().jpeg;
}

/// `excerpt` outlives the image.
std::unique_ptr<Exiv2::Image> openExcerpt(const TiffExcerpt& excerpt) {
    const auto bytes = excerpt.bytes();
    return std::unique_ptr<Exiv2::Image>{
        Exiv2::ImageFactory::open(bytes.data(), static_cast<long>(bytes.size())).release()};
}

/// Of HEIF pictures, for which libheif would read most of the file. Their EXIF repeats how the container
/// turns them.
void takeHeifSize(const Exiv2::Image& image, LoadedMetadata& to) {
    if (image.imageType() != Exiv2::ImageType::bmff || image.mimeType() == "image/x-canon-cr3") return;
    if (to.exif.empty() || image.pixelWidth() <= 0 || image.pixelHeight() <= 0) return;
    to.pixelSize = PixelSize{image.pixelWidth(), image.pixelHeight()};
    const auto found = to.exif.findKey(Exiv2::ExifKey{"Exif.Image.Orientation"});
    const bool isThere = found != to.exif.end() && found->count() == 1;
    to.orientation = Orientation{isThere ? static_cast<int>(found->toLong()) : 1};
}

void readByExiv2(const ByteRange& file, LoadedMetadata& to) {
    const auto part = describedPart(file);
    const auto excerpt = TiffExcerpt::read(part);
    const auto image = excerpt ? openExcerpt(*excerpt) : openByExiv2(part);
    if (!image) return;
    try {
        image->readMetadata();
    } catch (const std::exception&) {
        // It breaks off somewhere; what came before is worth having.
    }
    to.exif = image->exifData();
    to.iptc = image->iptcData();
    to.xmp = image->xmpData();
    takeHeifSize(*image, to);
}

} // namespace

LoadedMetadata LoadedMetadata::of(const FileURL& url, const std::stop_token& stop) {
    prepareExiv2();
    LoadedMetadata result;
    const auto file = ByteSource::ofFile(url);
    if (!file || stop.stop_requested()) return result;
    const auto kind = mediaKind(url.extension());
    try {
        if (kind != MediaKind::video) readByExiv2(ByteRange{file}, result);
    } catch (const std::exception&) {
        // No format that it knows.
    }
    if (stop.stop_requested()) return result;
    if (const auto source = result.pixelSize ? nullptr : ImageSource::open(url)) {
        result.pixelSize = source->pixelSize();
        result.orientation = source->orientation();
    }
    const bool mayHideExif = kind == MediaKind::heif || kind == MediaKind::raw;
    if (mayHideExif && result.exif.empty() && !stop.stop_requested()) result.exif = exifByOtherLibraries(url);
    return result;
}

} // namespace kelvara
