#include "platform/linux/MemoryPressure.h"

#include <gtest/gtest.h>

#include <string>

namespace kelvara {
namespace {

TEST(StallMeterTest, countsTheTimeLostBetweenTwoLooks) {
    const auto pressure = [](int total) {
        return "some avg10=0.31 avg60=1.20 avg300=9.00 total=" + std::to_string(total) +
               "\nfull avg10=0.00 avg60=0.00 avg300=0.00 total=99999999\n";
    };
    constexpr int second = 1'000'000;
    StallMeter meter;
    EXPECT_FALSE(meter.isShort(pressure(500'000), second)) << "the total since the system started";
    EXPECT_FALSE(meter.isShort(pressure(575'000), second));
    EXPECT_TRUE(meter.isShort(pressure(655'000), second));
    EXPECT_FALSE(meter.isShort(pressure(655'000), second));
    for (const auto* text : {"", "some", "some avg10=0.00 total=", "full total=99", "some total=x\n"}) {
        EXPECT_FALSE(meter.isShort(text, second)) << text;
    }
    EXPECT_FALSE(meter.isShort(pressure(900'000), second)) << "nothing to compare with";
}

TEST(MemoryPressureTest, doesNothingWhereTheKernelTellsNothing) {
    const MemoryPressure absent{[] { FAIL(); }, "/nowhere/pressure"};
    EXPECT_FALSE(absent.isNotified());
    const MemoryPressure refused{[] { FAIL(); }, "/proc/self/status"};
    EXPECT_FALSE(refused.isNotified());
}

} // namespace
} // namespace kelvara
