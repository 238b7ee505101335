#include "model/LightAdjustments.h"

#include <gtest/gtest.h>
#include <limits>
#include <tuple>
#include <vector>

namespace kelvara {
namespace {

using Slider = LightAdjustments::Slider;

TEST(LightAdjustmentsTest, keepsWhatIsNotNeutralWithinTheSlidersRange) {
    const std::vector<std::tuple<Slider, double, double>> rows{
        {Slider::exposure, 7, 5},         {Slider::exposure, -7, -5},
        {Slider::exposure, 0.005, 0.005}, {Slider::exposure, 0.0049, 0},
        {Slider::contrast, 0.4, 0},       {Slider::contrast, -0.5, -0.5},
        {Slider::blacks, -1000, -100},    {Slider::whites, 1000, 100},
        {Slider::shadows, 33.3, 33.3},    {Slider::highlights, -0.49, 0},
        {Slider::exposure, -0.0, 0.0},    {Slider::exposure, std::numeric_limits<double>::quiet_NaN(), 0},
    };
    for (const auto& [slider, value, kept] : rows) {
        LightAdjustments light;
        light.set(slider, 50);
        light.set(slider, value);
        EXPECT_EQ(light[slider], kept) << value;
        EXPECT_EQ(light.isEmpty(), kept == 0) << value;
        EXPECT_EQ(light == LightAdjustments{}, light.isEmpty());
    }
}

TEST(LightAdjustmentsTest, equalValuesHaveEqualHashes) {
    LightAdjustments a;
    LightAdjustments b;
    a.set(Slider::contrast, 10);
    b.set(Slider::shadows, 10);
    EXPECT_NE(a, b);
    EXPECT_NE(a.hash(), b.hash());
    b.set(Slider::shadows, 0.1);
    b.set(Slider::contrast, 10);
    EXPECT_EQ(a, b);
    EXPECT_EQ(a.hash(), b.hash());
}

TEST(LightAdjustmentsTest, texts) {
    const std::vector<std::tuple<Slider, double, std::string>> rows{
        {Slider::exposure, 0.35, "+0.35"}, {Slider::exposure, -1, "-1.00"},
        {Slider::exposure, 0.004, "0.00"}, {Slider::exposure, -0.005, "-0.01"},
        {Slider::contrast, -0.3, "0"},     {Slider::contrast, 20.4, "+20"},
        {Slider::blacks, -100, "-100"},
    };
    for (const auto& [slider, value, text] : rows) EXPECT_EQ(LightAdjustments::text(slider, value), text);
    for (const auto slider : LightAdjustments::sliders) {
        EXPECT_EQ(LightAdjustments::fromRawValue(LightAdjustments::rawValue(slider)), slider);
    }
    EXPECT_EQ(LightAdjustments::rawValue(Slider::highlights), "highlights");
    EXPECT_FALSE(LightAdjustments::fromRawValue("Exposure"));
}

} // namespace
} // namespace kelvara
