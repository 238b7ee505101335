#include "text/ByteCount.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

TEST(ByteCountTest, readsLikeAFileManager) {
    EXPECT_EQ(byteCountText(0), "Zero KB");
    EXPECT_EQ(byteCountText(1), "1 byte");
    EXPECT_EQ(byteCountText(999), "999 bytes");
    EXPECT_EQ(byteCountText(1000), "1 KB");
    EXPECT_EQ(byteCountText(45'400), "45 KB");
    EXPECT_EQ(byteCountText(12'340'000), "12.3 MB");
    EXPECT_EQ(byteCountText(12'400'000'000), "12.4 GB");
    EXPECT_EQ(byteCountText(3'149'000'000), "3.15 GB");
}

TEST(ByteCountTest, movesToTheNextUnitWhenRoundingReachesIt) {
    EXPECT_EQ(byteCountText(999'600), "1 MB");
    EXPECT_EQ(byteCountText(999'999'999), "1 GB");
    EXPECT_EQ(byteCountText(9'223'372'036'854'775'807), "9.22 EB");
}

} // namespace
} // namespace kelvara
