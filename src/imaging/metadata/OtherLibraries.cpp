#include "imaging/metadata/OtherLibraries.h"

#include "imaging/codecs/HeifObjects.h"

#include <libraw/libraw.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <vector>

namespace kelvara {
namespace {

constexpr std::size_t largestBlock = std::size_t{8} * 1024 * 1024;

/// The EXIF item of the primary picture; empty when there is none.
std::vector<std::uint8_t> exifItem(const FileURL& url) {
    const HeifOwned<heif_context> context{heif_context_alloc()};
    if (!context || !heifWorked(heif_context_read_from_file(context.get(), url.path().c_str(), nullptr)))
        return {};
    heif_image_handle* handle = nullptr;
    if (!heifWorked(heif_context_get_primary_image_handle(context.get(), &handle))) return {};
    const HeifOwned<heif_image_handle> primary{handle};
    heif_item_id id = 0;
    if (heif_image_handle_get_list_of_metadata_block_IDs(handle, "Exif", &id, 1) != 1) return {};
    const auto size = heif_image_handle_get_metadata_size(handle, id);
    if (size == 0 || size > largestBlock) return {};
    std::vector<std::uint8_t> item(size);
    if (!heifWorked(heif_image_handle_get_metadata(handle, id, item.data()))) return {};
    return item;
}

Exiv2::ExifData byLibHeif(const FileURL& url) {
    Exiv2::ExifData exif;
    const auto item = exifItem(url);
    // The first four bytes say how many come before the TIFF header.
    constexpr std::size_t prefix = 4;
    if (item.size() < prefix) return exif;
    std::uint64_t start = 0;
    for (std::size_t i = 0; i < prefix; ++i) start = start << 8 | item[i];
    start += prefix;
    if (start >= item.size()) return exif;
    Exiv2::ExifParser::decode(exif, item.data() + start, static_cast<std::uint32_t>(item.size() - start));
    return exif;
}

/// To a millionth, with which exposure times of a camera come out right.
Exiv2::URational rational(float value) {
    constexpr std::uint32_t denominator = 1'000'000;
    return {static_cast<std::uint32_t>(std::lround(static_cast<double>(value) * denominator)), denominator};
}

std::string dateText(std::time_t time) {
    std::tm local{};
    if (::localtime_r(&time, &local) == nullptr) return {}; // made from the camera's clock by mktime
    std::string text(32, '\0');
    text.resize(std::strftime(text.data(), text.size(), "%Y:%m:%d %H:%M:%S", &local));
    return text;
}

Exiv2::ExifData byLibRaw(const FileURL& url) {
    Exiv2::ExifData exif;
    const auto library =
        std::make_unique<LibRaw>(LIBRAW_OPIONS_NO_MEMERR_CALLBACK | LIBRAW_OPIONS_NO_DATAERR_CALLBACK);
    if (library->open_file(url.path().c_str()) != LIBRAW_SUCCESS) return exif;
    const auto& image = library->imgdata;
    const auto setText = [&exif](const char* key, const std::string& text) {
        if (!text.empty()) exif[key] = text;
    };
    const auto setNumber = [&exif](const char* key, float value) {
        if (value > 0 && value < 4000) exif[key] = rational(value);
    };
    setText("Exif.Image.Make", image.idata.make);
    setText("Exif.Image.Model", image.idata.model);
    setText("Exif.Photo.LensModel", image.lens.Lens);
    setNumber("Exif.Photo.FNumber", image.other.aperture);
    setNumber("Exif.Photo.ExposureTime", image.other.shutter);
    setNumber("Exif.Photo.FocalLength", image.other.focal_len);
    if (image.other.iso_speed > 0 && image.other.iso_speed <= 0xFFFF)
        exif["Exif.Photo.ISOSpeedRatings"] = static_cast<std::uint16_t>(image.other.iso_speed);
    if (image.other.timestamp > 0) setText("Exif.Photo.DateTimeOriginal", dateText(image.other.timestamp));
    return exif;
}

} // namespace

Exiv2::ExifData exifByOtherLibraries(const FileURL& url) {
    try {
        auto exif = byLibHeif(url);
        return exif.empty() ? byLibRaw(url) : exif;
    } catch (const std::exception&) {
        return {};
    }
}

} // namespace kelvara
