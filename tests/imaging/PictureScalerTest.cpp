#include "imaging/PictureScaler.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <set>

namespace kelvara {
namespace {

/// A grey picture scaled to `wanted` pixels a row and column.
BitmapPtr scaled(PixelSize given, PixelSize wanted, PixelFormat format,
                 const std::function<double(int x, int y)>& level) {
    return collectRows(
        given, wanted, ColorProfile::sRGB(), {},
        [&](int y, std::uint8_t* row) {
            for (int i = 0; i < given.width * 4; ++i) {
                if (format == PixelFormat::bgrx8)
                    row[i] = static_cast<std::uint8_t>(std::lround(level(i / 4, y) * 255));
                else
                    reinterpret_cast<std::uint16_t*>(row)[i] =
                        static_cast<std::uint16_t>(std::lround(level(i / 4, y) * 65535));
            }
            return true;
        },
        format);
}

double blue(const Bitmap& bitmap, int x, int y) {
    const auto i = static_cast<std::size_t>(x) * 4;
    return bitmap.format() == PixelFormat::bgrx8 ? bitmap.row(y)[i] / 255.0 : bitmap.row16(y)[i] / 65535.0;
}

TEST(PictureScalerTest, keepsWhatIsThereAndDropsWhatIsTooFine) {
    for (const auto format : {PixelFormat::bgrx8, PixelFormat::bgrx16}) {
        for (const PixelSize wanted : {PixelSize{99, 67}, {61, 40}, {40, 68}, {20, 14}, {1, 1}}) {
            const PixelSize given{100, 68};
            const double stepX = 100.0 / wanted.width, stepY = 68.0 / wanted.height;
            const auto flat = scaled(given, wanted, format, [](int, int) { return 0.6; });
            const auto slope = scaled(given, wanted, format, [](int x, int y) { return (x + y) / 200.0; });
            const auto fine = scaled(given, wanted, format, [](int x, int) { return x % 2; });
            for (int y = 0; y < wanted.height; ++y) {
                for (int x = 0; x < wanted.width; ++x) {
                    EXPECT_EQ(blue(*flat, x, y), 0.6);
                    const auto pixel = bytesPerPixel(format);
                    EXPECT_EQ(flat->row(y)[(static_cast<std::size_t>(x) + 1) * pixel - 1], 255);
                    const bool isInside = x > 2 && x + 3 < wanted.width && y > 2 && y + 3 < wanted.height;
                    if (!isInside) continue;
                    const double middle = ((x + 0.5) * stepX + (y + 0.5) * stepY - 1) / 200;
                    EXPECT_NEAR(blue(*slope, x, y), middle, 0.006) << wanted.width;
                    if (stepX > 2) {
                        EXPECT_NEAR(blue(*fine, x, y), 0.5, 0.05) << wanted.width;
                    }
                }
            }
        }
    }
}

TEST(PictureScalerTest, sumsOfEightBitsKnowMore) {
    const auto smooth = collectRows(
        {300, 3}, {150, 1}, ColorProfile::sRGB(), {},
        [](int, std::uint8_t* row) {
            for (int i = 0; i < 1200; ++i) row[i] = static_cast<std::uint8_t>(100 + i / 4 / 3);
            return true;
        },
        PixelFormat::bgrx8, PixelFormat::bgrx16);
    std::set<double> levels;
    for (int x = 0; x < 150; ++x) levels.insert(blue(*smooth, x, 0));
    EXPECT_GT(levels.size(), 140) << "of 100 in the rows";
    EXPECT_NEAR(*levels.begin(), 100 / 255.0, 1e-3);
    EXPECT_NEAR(*levels.rbegin(), 199 / 255.0, 1e-3);
}

TEST(PictureScalerTest, edgesStaySharpInPlaceAndWithinTheNumbers) {
    const auto edge =
        scaled({120, 9}, {60, 5}, PixelFormat::bgrx8, [](int x, int) { return x < 60 ? 0 : 1; });
    for (int x = 0; x < 60; ++x) EXPECT_NEAR(blue(*edge, x, 2), x < 30 ? 0 : 1, 0.07) << x;
    EXPECT_EQ(blue(*edge, 29, 2) + blue(*edge, 30, 2), 1);
}

} // namespace
} // namespace kelvara
