#pragma once

#include "samplecard/TiffDirectory.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kelvara::samplecard {

/// What the camera notes about a picture.
struct Shot {
    struct Position {
        double latitude = 0;  ///< degrees, north positive
        double longitude = 0; ///< degrees, east positive
        double altitude = 0;  ///< metres
    };
    /// What the EXIF ColorSpace tag and the interoperability index say.
    enum class ColourTag { sRGB, uncalibrated, adobeByIndex };

    std::int64_t time = 0; ///< seconds since 1970; EXIF shows it as UTC
    std::string make = "Kelvara";
    std::string model = "K1";
    std::string lens = "KL 24-70mm F2.8";
    TiffDirectory::Rational exposure{1, 250}; ///< seconds
    TiffDirectory::Rational fNumber{8, 1};
    int iso = 100;
    int focalLength = 35;               ///< millimetres
    TiffDirectory::Rational bias{0, 3}; ///< EV
    int orientation = 1;                ///< EXIF, 1 to 8
    int rating = 0;                     ///< stars set in the camera; 0 writes none
    ColourTag colourTag = ColourTag::sRGB;
    std::optional<Position> position;
};

/// The form of EXIF dates, "2024:05:03 06:12:45".
std::string exifDate(std::int64_t time);

/// The directory of the Exif tag: exposure, lens, date, and the pixel size as stored.
TiffDirectory exifDirectory(const Shot& shot, int width, int height);

/// Adds maker, model, dates, orientation and the Exif and GPS directories.
void describe(TiffDirectory& directory, const Shot& shot, int width, int height);

/// A TIFF block as the APP1 segment of a JPEG or the Exif item of a HEIC holds it, without the "Exif" mark.
/// `thumbnail` is a JPEG or empty.
std::string exifBlock(const Shot& shot, int width, int height, const std::string& thumbnail);

} // namespace kelvara::samplecard
