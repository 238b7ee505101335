#include "imaging/ColorTransform.h"

#include "imaging/RowSlices.h"

#include <lcms2.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <random>
#include <vector>

namespace kelvara {
namespace {

/// LittleCMS without any of its shortcuts.
std::vector<std::uint16_t> exactly(const ColorProfile& from, const ColorProfile& to,
                                   const std::vector<std::uint16_t>& pixels) {
    auto* a = cmsOpenProfileFromMem(from.icc().data(), static_cast<cmsUInt32Number>(from.icc().size()));
    auto* b = cmsOpenProfileFromMem(to.icc().data(), static_cast<cmsUInt32Number>(to.icc().size()));
    auto* transform = cmsCreateTransform(a, TYPE_BGRA_16, b, TYPE_BGRA_16, INTENT_RELATIVE_COLORIMETRIC,
                                         cmsFLAGS_NOOPTIMIZE);
    std::vector<std::uint16_t> result(pixels.size(), 0xFFFF);
    cmsDoTransform(transform, pixels.data(), result.data(), static_cast<cmsUInt32Number>(pixels.size() / 4));
    cmsDeleteTransform(transform);
    cmsCloseProfile(a);
    cmsCloseProfile(b);
    return result;
}

TEST(ColorTransformTest, sixteenBitsAreConvertedAsExactlyAsTheLibraryCan) {
    constexpr int bt2020 = 9, pq = 16, side = 100;
    const std::array<std::array<ColorProfilePtr, 2>, 4> pairs{
        {{ColorProfile::fromCodePoints(bt2020, pq), ColorProfile::displayP3()},
         {ColorProfile::displayP3(), ColorProfile::sRGB()},
         {ColorProfile::sRGB(), ColorProfile::adobeRGB()},
         {ColorProfile::adobeRGB(), ColorProfile::displayP3()}}};
    std::mt19937 random{1};
    for (const auto& [from, to] : pairs) {
        std::shared_ptr<Bitmap> bitmap = Bitmap::create({side, side}, from, PixelFormat::bgrx16);
        std::vector<std::uint16_t> pixels;
        for (int y = 0; y < side; ++y) {
            for (auto& value : bitmap->row16(y)) {
                value = static_cast<std::uint16_t>(random() % 65536);
                pixels.push_back(value);
            }
        }
        const auto expected = exactly(*from, *to, pixels);
        const auto wide = converted(bitmap, to, PixelFormat::bgrx16, {});
        const auto narrow = converted(bitmap, to, PixelFormat::bgrx8, {});
        int worst = 0, worstNarrow = 0;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const auto y = static_cast<int>(i / (side * 4));
            const auto at = i % (side * 4);
            if (i % 4 == 3) {
                EXPECT_EQ(wide->row16(y)[at], 0xFFFF);
                EXPECT_EQ(narrow->row(y)[at], 0xFF);
                continue;
            }
            worst = std::max(worst, std::abs(wide->row16(y)[at] - expected[i]));
            worstNarrow = std::max(worstNarrow, std::abs(narrow->row(y)[at] * 257 - expected[i]));
        }
        EXPECT_LT(worst, 128) << "half of one in 255";
        EXPECT_LT(worstNarrow, 200);
    }
}

TEST(ColorTransformTest, largePicturesComeOutTheSameInSlices) {
    constexpr PixelSize size{3000, 2801}; // enough for four
    const auto p3 = ColorProfile::displayP3();
    std::shared_ptr<Bitmap> bitmap = Bitmap::create(size, p3);
    for (int y = 0; y < size.height; ++y)
        std::ranges::fill(bitmap->row(y), static_cast<std::uint8_t>(y % 251));
    const auto whole = converted(bitmap, ColorProfile::adobeRGB(), PixelFormat::bgrx8, {});
    for (int y = 0; y < size.height; ++y) {
        std::shared_ptr<Bitmap> row = Bitmap::create({size.width, 1}, p3);
        std::ranges::copy(bitmap->row(y), row->data());
        const auto alone = converted(row, ColorProfile::adobeRGB(), PixelFormat::bgrx8, {});
        ASSERT_TRUE(std::ranges::equal(whole->row(y), alone->row(0))) << y;
    }
    std::stop_source stop;
    stop.request_stop();
    EXPECT_FALSE(converted(bitmap, ColorProfile::adobeRGB(), PixelFormat::bgrx8, stop.get_token()));
}

TEST(RowSlicesTest, everyRowIsInOneSlice) {
    for (const int rows : {1, 2, 3, 7, 4000}) {
        std::vector<std::atomic<int>> seen(static_cast<std::size_t>(rows));
        forRowSlices(rows, 24'000'000, [&](int begin, int end) {
            for (int y = begin; y < end; ++y) ++seen[static_cast<std::size_t>(y)];
        });
        EXPECT_TRUE(std::ranges::all_of(seen, [](const auto& count) { return count == 1; })) << rows;
    }
}

} // namespace
} // namespace kelvara
