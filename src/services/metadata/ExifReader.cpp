#include "services/metadata/ExifReader.h"

#include "imaging/metadata/LoadedMetadata.h"
#include "services/metadata/MetadataValues.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <string_view>

namespace kelvara {
namespace {

/// Some RAW files keep in their first directory what belongs in EXIF's own.
const Exiv2::Exifdatum* findPhotoTag(const Exiv2::ExifData& exif, const std::string& tag) {
    // Compared by name, because a key that the library doesn't expect in a group throws.
    for (const std::string_view group : {"Photo", "Image"}) {
        const auto found = std::find_if(exif.begin(), exif.end(), [&](const auto& datum) {
            return datum.groupName() == group && datum.tagName() == tag;
        });
        if (found != exif.end()) return &*found;
    }
    return nullptr;
}

std::optional<double> number(const Exiv2::ExifData& exif, const std::string& tag) {
    const auto* datum = findPhotoTag(exif, tag);
    if (!datum || datum->count() == 0) return std::nullopt;
    const auto values = MetadataValues::numbers(datum->value(), 1);
    return values.empty() ? std::nullopt : values.front();
}

/// Zero stands for "unknown" where a camera can't know, as with a manual lens.
std::optional<double> positiveNumber(const Exiv2::ExifData& exif, const std::string& tag) {
    const auto value = number(exif, tag);
    return value && *value > 0 ? value : std::nullopt;
}

std::optional<int> positiveInteger(const Exiv2::ExifData& exif, const std::string& tag) {
    const auto value = positiveNumber(exif, tag);
    if (!value || *value < 1 || *value > std::numeric_limits<int>::max()) return std::nullopt;
    return static_cast<int>(*value);
}

std::optional<std::string> nonEmpty(std::string text) {
    return text.empty() ? std::nullopt : std::optional{std::move(text)};
}

std::optional<std::string> asciiText(const Exiv2::Exifdatum* datum) {
    if (!datum || datum->typeId() != Exiv2::asciiString) return std::nullopt;
    return nonEmpty(MetadataValues::trimmed(datum->toString()));
}

std::optional<std::string> imageText(const Exiv2::ExifData& exif, const char* key) {
    const auto found = exif.findKey(Exiv2::ExifKey{key});
    return asciiText(found == exif.end() ? nullptr : &*found);
}

/// The library prints a number, mostly in brackets, for lenses that it doesn't know.
bool isName(std::string_view lens) {
    const bool hasLetter =
        std::ranges::any_of(lens, [](unsigned char c) { return (c | 0x20U) >= 'a' && (c | 0x20U) <= 'z'; });
    return hasLetter && !lens.starts_with('(') && !lens.starts_with("Unknown") && lens != "n/a" &&
           lens != "None";
}

} // namespace

std::string auxiliaryLens(const Exiv2::ExifData& exif, const Exiv2::XmpData& xmp) {
    try {
        const auto converted = xmp.findKey(Exiv2::XmpKey{"Xmp.aux.Lens"});
        if (converted != xmp.end()) {
            if (auto lens = MetadataValues::trimmed(converted->toString()); !lens.empty()) return lens;
        }
        const auto noted = Exiv2::lensName(exif);
        if (noted == exif.end() || noted->groupName() == "Photo") return {};
        auto lens = MetadataValues::trimmed(noted->print(&exif));
        return isName(lens) ? lens : std::string{};
    } catch (const std::exception&) {
        return {};
    }
}

ExifInfo readExif(const FileURL& url, const std::stop_token& stop) {
    ExifInfo info;
    try {
        const auto metadata = LoadedMetadata::of(url, stop);
        const auto& exif = metadata.exif;
        info.cameraMake = imageText(exif, "Exif.Image.Make");
        info.cameraModel = imageText(exif, "Exif.Image.Model");
        info.lensModel = asciiText(findPhotoTag(exif, "LensModel"));
        if (!info.lensModel) info.lensModel = nonEmpty(auxiliaryLens(exif, metadata.xmp));
        if (const auto date = asciiText(findPhotoTag(exif, "DateTimeOriginal"))) {
            info.captureDate = ExifInfo::parseDate(*date);
        }
        info.fNumber = positiveNumber(exif, "FNumber");
        info.exposureTime = number(exif, "ExposureTime");
        info.iso = positiveInteger(exif, "ISOSpeedRatings");
        info.focalLength = positiveNumber(exif, "FocalLength");
        info.exposureBias = number(exif, "ExposureBiasValue");
        if (metadata.pixelSize) {
            info.pixelWidth = metadata.pixelSize->width;
            info.pixelHeight = metadata.pixelSize->height;
        }
        if (metadata.orientation) info.orientation = metadata.orientation->exif();
    } catch (const std::exception&) {
        // What was read so far.
    }
    return info;
}

} // namespace kelvara
