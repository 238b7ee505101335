#include "imaging/Bitmap.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

namespace kelvara {
namespace {

TEST(BitmapTest, picturesNeverShareMemory) {
    // Large enough for the blocks that are kept for the next picture.
    constexpr PixelSize small{10, 10}, large{2000, 1500}, other{2000, 1000};
    const auto work = [&](std::uint8_t mark) {
        for (int round = 0; round < 20; ++round) {
            std::vector<std::unique_ptr<Bitmap>> bitmaps;
            std::set<const std::uint8_t*> places;
            for (const auto size : {large, small, large, other, large}) {
                bitmaps.push_back(Bitmap::create(size, ColorProfile::sRGB()));
                places.insert(bitmaps.back()->data());
                bitmaps.back()->row(size.height - 1).back() = mark;
            }
            EXPECT_EQ(places.size(), bitmaps.size());
            for (const auto& bitmap : bitmaps) EXPECT_EQ(bitmap->row(bitmap->height() - 1).back(), mark);
        }
    };
    const std::jthread first{work, std::uint8_t{1}}, second{work, std::uint8_t{2}};
}

} // namespace
} // namespace kelvara
