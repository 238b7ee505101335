#include "samplecard/Shot.h"

#include <cmath>
#include <ctime>
#include <fmt/format.h>

namespace kelvara::samplecard {
namespace {

// Names of TIFF 6.0 and Exif 2.32.
enum Tag {
    tagCompression = 259,
    tagMake = 271,
    tagModel = 272,
    tagOrientation = 274,
    tagXResolution = 282,
    tagYResolution = 283,
    tagResolutionUnit = 296,
    tagSoftware = 305,
    tagDateTime = 306,
    tagThumbnailOffset = 513,
    tagThumbnailLength = 514,
    tagYCbCrPositioning = 531,
    tagRating = 0x4746,
    tagExposureTime = 33434,
    tagFNumber = 33437,
    tagExif = 34665,
    tagExposureProgram = 34850,
    tagGPS = 34853,
    tagISO = 34855,
    tagSensitivityType = 34864,
    tagExifVersion = 36864,
    tagDateTimeOriginal = 36867,
    tagDateTimeDigitized = 36868,
    tagOffsetTime = 36880,
    tagOffsetTimeOriginal = 36881,
    tagComponents = 37121,
    tagShutterSpeed = 37377,
    tagAperture = 37378,
    tagExposureBias = 37380,
    tagMeteringMode = 37383,
    tagFlash = 37385,
    tagFocalLength = 37386,
    tagFlashpixVersion = 40960,
    tagColorSpace = 40961,
    tagPixelWidth = 40962,
    tagPixelHeight = 40963,
    tagInterop = 40965,
    tagFocalLength35 = 41989,
    tagBodySerial = 42033,
    tagLensModel = 42036,
};

using Rational = TiffDirectory::Rational;

double valueOf(Rational rational) {
    return static_cast<double>(rational.first) / static_cast<double>(rational.second);
}

Rational thousandths(double value) { return {std::lround(value * 1000), 1000}; }

std::vector<Rational> sexagesimal(double degrees) {
    const auto hundredths = std::lround(std::fabs(degrees) * 360000);
    return {{hundredths / 360000, 1}, {hundredths / 6000 % 60, 1}, {hundredths % 6000, 100}};
}

TiffDirectory gpsDirectory(const Shot::Position& position) {
    TiffDirectory gps;
    gps.bytes(0, {2, 3, 0, 0});
    gps.text(1, position.latitude < 0 ? "S" : "N");
    gps.rationals(2, sexagesimal(position.latitude));
    gps.text(3, position.longitude < 0 ? "W" : "E");
    gps.rationals(4, sexagesimal(position.longitude));
    gps.bytes(5, {position.altitude < 0 ? 1 : 0});
    gps.rationals(6, {{std::lround(std::fabs(position.altitude) * 10), 10}});
    return gps;
}

TiffDirectory interopDirectory(const std::string& index) {
    TiffDirectory interop;
    interop.text(1, index);
    interop.undefined(2, "0100");
    return interop;
}

} // namespace

std::string exifDate(std::int64_t time) {
    const std::time_t seconds = time;
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    return fmt::format("{:04}:{:02}:{:02} {:02}:{:02}:{:02}", parts.tm_year + 1900, parts.tm_mon + 1,
                       parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
}

TiffDirectory exifDirectory(const Shot& shot, int width, int height) {
    TiffDirectory exif;
    exif.rationals(tagExposureTime, {shot.exposure});
    exif.rationals(tagFNumber, {shot.fNumber});
    exif.shorts(tagExposureProgram, {3});
    exif.shorts(tagISO, {shot.iso});
    exif.shorts(tagSensitivityType, {2});
    exif.undefined(tagExifVersion, "0232");
    exif.text(tagDateTimeOriginal, exifDate(shot.time));
    exif.text(tagDateTimeDigitized, exifDate(shot.time));
    exif.text(tagOffsetTime, "+00:00");
    exif.text(tagOffsetTimeOriginal, "+00:00");
    exif.undefined(tagComponents, {"\1\2\3\0", 4}); // Y, Cb, Cr
    exif.undefined(tagFlashpixVersion, "0100");
    exif.signedRationals(tagShutterSpeed, {thousandths(-std::log2(valueOf(shot.exposure)))});
    exif.rationals(tagAperture, {thousandths(2 * std::log2(valueOf(shot.fNumber)))});
    exif.signedRationals(tagExposureBias, {shot.bias});
    exif.shorts(tagMeteringMode, {5});
    exif.shorts(tagFlash, {16});
    exif.rationals(tagFocalLength, {{shot.focalLength, 1}});
    exif.shorts(tagColorSpace, {shot.colourTag == Shot::ColourTag::sRGB ? 1 : 65535});
    exif.longs(tagPixelWidth, {static_cast<std::uint32_t>(width)});
    exif.longs(tagPixelHeight, {static_cast<std::uint32_t>(height)});
    exif.shorts(tagFocalLength35, {shot.focalLength});
    exif.text(tagBodySerial, "1000421");
    exif.text(tagLensModel, shot.lens);
    if (shot.colourTag == Shot::ColourTag::sRGB) exif.directories(tagInterop, {interopDirectory("R98")});
    if (shot.colourTag == Shot::ColourTag::adobeByIndex)
        exif.directories(tagInterop, {interopDirectory("R03")});
    return exif;
}

void describe(TiffDirectory& directory, const Shot& shot, int width, int height) {
    directory.text(tagMake, shot.make);
    directory.text(tagModel, shot.model);
    directory.shorts(tagOrientation, {shot.orientation});
    directory.text(tagSoftware, shot.model + " 1.02");
    directory.text(tagDateTime, exifDate(shot.time));
    if (shot.rating > 0) directory.shorts(tagRating, {shot.rating});
    directory.directories(tagExif, {exifDirectory(shot, width, height)});
    if (shot.position) directory.directories(tagGPS, {gpsDirectory(*shot.position)});
}

std::string exifBlock(const Shot& shot, int width, int height, const std::string& thumbnail) {
    const auto resolution = [](TiffDirectory& directory, int perInch) {
        directory.rationals(tagXResolution, {{perInch, 1}});
        directory.rationals(tagYResolution, {{perInch, 1}});
        directory.shorts(tagResolutionUnit, {2});
    };
    TiffDirectory main;
    describe(main, shot, width, height);
    resolution(main, 300);
    main.shorts(tagYCbCrPositioning, {2});
    if (thumbnail.empty()) return TiffDirectory::file(main);
    TiffDirectory second;
    second.shorts(tagCompression, {6});
    resolution(second, 72);
    second.data(tagThumbnailOffset, tagThumbnailLength, thumbnail);
    return TiffDirectory::file(main, &second);
}

} // namespace kelvara::samplecard
