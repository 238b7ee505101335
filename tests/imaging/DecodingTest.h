#pragma once

#include "imaging/Bitmap.h"
#include "imaging/ImageDecoder.h"
#include "support/JpegMaker.h"
#include "support/TemporaryFolder.h"
#include "support/TiffMaker.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <string>

namespace kelvara {

struct Color {
    int red, green, blue;
};

inline Color colorAt(const Bitmap& bitmap, int x, int y) {
    const auto pixel = bitmap.row(y).subspan(static_cast<std::size_t>(x) * 4);
    return {pixel[2], pixel[1], pixel[0]};
}

inline ::testing::AssertionResult isNear(Color seen, Color expected, int tolerance = 6) {
    const auto differs = [tolerance](int a, int b) { return std::abs(a - b) > tolerance; };
    if (!differs(seen.red, expected.red) && !differs(seen.green, expected.green) &&
        !differs(seen.blue, expected.blue)) {
        return ::testing::AssertionSuccess();
    }
    const auto text = [](Color c) {
        return std::to_string(c.red) + ' ' + std::to_string(c.green) + ' ' + std::to_string(c.blue);
    };
    return ::testing::AssertionFailure() << text(seen) << " instead of " << text(expected);
}

inline FileURL writeFile(const TemporaryFolder& folder, std::string_view name, const Bytes& bytes) {
    return folder.write(name, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

inline constexpr Color red{255, 0, 0}, green{0, 255, 0}, blue{0, 0, 255}, white{255, 255, 255},
    black{0, 0, 0};

inline std::array<std::uint8_t, 4> painted(Color color) {
    return {static_cast<std::uint8_t>(color.red), static_cast<std::uint8_t>(color.green),
            static_cast<std::uint8_t>(color.blue), 0};
}

/// Red and green on top, blue and white below.
inline JpegRecipe quarters(PixelSize size) {
    JpegRecipe recipe{.size = size};
    recipe.paint = [size](int x, int y) {
        const bool isLeft = x < size.width / 2;
        if (y < size.height / 2) return painted(isLeft ? red : green);
        return painted(isLeft ? blue : white);
    };
    return recipe;
}

/// The colours of the four corners, from the top left in the order of reading.
inline std::array<Color, 4> corners(const Bitmap& bitmap) {
    const int right = bitmap.width() - 2, bottom = bitmap.height() - 2;
    return {colorAt(bitmap, 1, 1), colorAt(bitmap, right, 1), colorAt(bitmap, 1, bottom),
            colorAt(bitmap, right, bottom)};
}

inline constexpr std::uint16_t orientationTag = 0x0112, jpegOffsetTag = 0x0201, jpegLengthTag = 0x0202,
                               exifTag = 0x8769;

/// An EXIF block with an orientation and, unless empty, a thumbnail.
inline Bytes exifBlock(std::uint32_t orientation, const Bytes& thumbnail = {}) {
    TiffMaker tiff;
    std::uint32_t second = 0;
    if (!thumbnail.empty()) {
        const auto at = tiff.add(thumbnail);
        second = tiff.addDirectory(
            {{jpegOffsetTag, at}, {jpegLengthTag, static_cast<std::uint32_t>(thumbnail.size())}});
    }
    return tiff.finish(tiff.addDirectory({{orientationTag, orientation, 1, TiffMaker::shortType}}, second));
}

} // namespace kelvara
