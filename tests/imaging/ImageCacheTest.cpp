#include "imaging/ImageCache.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

/// Weighs 4 bytes a pixel.
BitmapPtr image(int pixels) { return Bitmap::create({pixels, 1}, ColorProfile::sRGB()); }

TEST(ImageCacheTest, forgetsWhatWasUsedLongestAgoWhenBytesRunOut) {
    ImageCache cache{100};
    cache.store("a", image(10));
    cache.store("b", image(10));
    EXPECT_TRUE(cache.find("a"));
    cache.store("c", image(10)); // 120 bytes
    EXPECT_TRUE(cache.contains("a"));
    EXPECT_FALSE(cache.contains("b"));
    EXPECT_EQ(cache.totalCost(), 80U);
    cache.store("a", image(1));
    EXPECT_EQ(cache.totalCost(), 44U) << "replaced, not added";
    cache.store("d", image(26));
    EXPECT_FALSE(cache.contains("d")) << "larger than the cache";
    EXPECT_TRUE(cache.contains("c"));
}

TEST(ImageCacheTest, keepsNoMoreImagesThanItsCount) {
    ImageCache cache{1000, 2};
    for (const auto* key : {"a", "b", "c"}) cache.store(key, image(1));
    EXPECT_EQ(cache.count(), 2U);
    EXPECT_FALSE(cache.contains("a"));
    cache.store("b", nullptr);
    EXPECT_FALSE(cache.contains("b"));
    cache.clear();
    EXPECT_EQ(cache.totalCost(), 0U);
    EXPECT_FALSE(cache.find("c"));
}

TEST(ImageCacheTest, givesHalfBackOldestFirst) {
    ImageCache cache{1000};
    cache.shrink();
    for (const auto* key : {"a", "b", "c", "d"}) cache.store(key, image(10));
    EXPECT_TRUE(cache.find("a"));
    cache.shrink();
    EXPECT_EQ(cache.totalCost(), 80U);
    EXPECT_TRUE(cache.contains("a"));
    EXPECT_TRUE(cache.contains("d"));
    for (int i = 0; i < 3; ++i) cache.shrink();
    EXPECT_EQ(cache.count(), 0U);
}

TEST(BitmapTest, refusesAbsurdSizesBeforeAskingForMemory) {
    EXPECT_FALSE(Bitmap::create({0, 5}, ColorProfile::sRGB()));
    EXPECT_FALSE(Bitmap::create({-1, 5}, ColorProfile::sRGB()));
    EXPECT_FALSE(Bitmap::create({1 << 30, 1 << 30}, ColorProfile::sRGB()));
}

TEST(PixelSizeTest, fitsTheLongestSideAndNeverGrows) {
    EXPECT_EQ((PixelSize{6000, 4000}.fittedTo(256)), (PixelSize{256, 171}));
    EXPECT_EQ((PixelSize{4000, 6000}.fittedTo(256)), (PixelSize{171, 256}));
    EXPECT_EQ((PixelSize{60, 40}.fittedTo(256)), (PixelSize{60, 40}));
    EXPECT_EQ((PixelSize{60000, 10}.fittedTo(100)), (PixelSize{100, 1}));
}

} // namespace
} // namespace kelvara
