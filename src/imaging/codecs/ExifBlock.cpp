#include "imaging/codecs/ExifBlock.h"

#include "imaging/codecs/TiffTags.h"

namespace kelvara {

bool namesAdobeRGB(TiffReader& reader, const TiffDirectory& exif) {
    constexpr std::uint32_t adobeRGB = 2; // not in the standard, but written by some cameras
    constexpr std::uint32_t uncalibrated = 0xFFFF;
    const auto space = reader.number(exif, TiffTag::colorSpace);
    if (space == adobeRGB) return true;
    if (space != uncalibrated) return false;
    const auto offset = reader.number(exif, TiffTag::interoperabilityDirectory);
    if (!offset) return false;
    const auto interoperability = reader.directory(*offset);
    return interoperability && reader.text(*interoperability, TiffTag::interoperabilityIndex) == "R03";
}

ExifBlock ExifBlock::read(const ByteRange& tiff) {
    ExifBlock result;
    auto reader = TiffReader::open(tiff);
    if (!reader) return result;
    const auto main = reader->directory(reader->firstDirectory());
    if (!main) return result;
    result.orientation =
        Orientation{static_cast<int>(reader->number(*main, TiffTag::orientation).value_or(1))};
    if (const auto offset = reader->number(*main, TiffTag::exifDirectory)) {
        if (const auto exif = reader->directory(*offset)) result.isAdobeRGB = namesAdobeRGB(*reader, *exif);
    }
    const auto second = reader->directory(main->next);
    if (!second) return result;
    const auto offset = reader->number(*second, TiffTag::jpegOffset);
    const auto length = reader->number(*second, TiffTag::jpegLength);
    if (offset && length) result.thumbnail = tiff.part(*offset, *length);
    return result;
}

ColorProfilePtr profileOf(const std::vector<std::uint8_t>& icc, bool isAdobeRGB) {
    if (auto profile = ColorProfile::fromIcc(icc)) return profile;
    return isAdobeRGB ? ColorProfile::adobeRGB() : nullptr;
}

} // namespace kelvara
