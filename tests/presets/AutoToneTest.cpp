#include "presets/AutoTone.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numeric>
#include <vector>

namespace kelvara {
namespace {

using Slider = LightAdjustments::Slider;
using Values = std::vector<double>; // of the sliders, in their order

/// Pixels of these levels, the same number each.
Histogram histogramOf(const std::vector<std::size_t>& levels) {
    Histogram histogram;
    for (const auto level : levels) histogram.luminance[level] += 1.0 / static_cast<double>(levels.size());
    return histogram;
}
std::vector<std::size_t> levels(std::size_t from, std::size_t to) {
    std::vector<std::size_t> all(to - from + 1);
    std::iota(all.begin(), all.end(), from);
    return all;
}

Values solved(const Histogram& histogram, const std::optional<DevelopPreset>& preset = std::nullopt) {
    const auto light = AutoTone::adjustments(histogram, preset);
    Values values;
    for (const auto slider : LightAdjustments::sliders) values.push_back(light[slider]);
    return values;
}

/// How bright a grey comes out.
double brightness(double x, double exposure, double contrast = 0) {
    return PresetLook{{{"Exposure2012", exposure}, {"Contrast2012", contrast}}}.apply({x, x, x})[0];
}

TEST(AutoToneTest, picturesOfOneLevel) {
    EXPECT_EQ(solved(histogramOf({0})), (Values{0.7, 30, 0, 30, 30, 0})) << "a dark photo keeps its mood";
    EXPECT_EQ(solved(histogramOf({255})), (Values{-1.5, 30, 0, 0, 0, -30}));
    EXPECT_EQ(solved(Histogram{}), (Values{-1.5, 30, 0, 0, 0, -30})) << "no picture";
    EXPECT_EQ(solved(histogramOf({107})), (Values{0, 30, 0, 0, 30, -30})) << "the middle stays where it is";
}

TEST(AutoToneTest, theMiddleComesNearItsTarget) {
    for (const std::size_t median : {60U, 100U, 128U, 180U}) {
        const double x = static_cast<double>(median) / 255;
        const double exposure = solved(histogramOf({median}))[0];
        EXPECT_NEAR(brightness(x, exposure), x + 0.7 * (0.42 - x), 0.005) << median;
    }
    EXPECT_EQ(solved(histogramOf({40}))[0], 1.5) << "out of reach";
    EXPECT_EQ(solved(histogramOf({39}))[0], 0.7);
}

TEST(AutoToneTest, highlightsAreProtected) {
    auto histogram = histogramOf({60});
    histogram.luminance[60] = 0.9;
    histogram.luminance[200] = 0.1;
    const double exposure = solved(histogram)[0];
    EXPECT_LT(brightness(200.0 / 255, exposure), 0.995);
    EXPECT_GT(brightness(200.0 / 255, exposure + 0.02), 0.995) << "and no more than they need";

    histogram.luminance[60] = 0.996;
    histogram.luminance[200] = 0.004; // few enough to be lost
    EXPECT_GT(solved(histogram)[0], exposure + 0.2);

    // Whatever the preset clips anyway may stay so.
    const auto clipping =
        DevelopPreset::of("", "", {{"ToneCurvePV2012", std::vector<double>{0, 0, 199, 255}}});
    histogram.luminance[60] = 0.9;
    histogram.luminance[200] = 0.1;
    EXPECT_GT(solved(histogram, clipping)[0], 0.1);
}

TEST(AutoToneTest, theRestAnswersTheSpreadOfLevels) {
    const auto flat = solved(histogramOf(levels(90, 130)));
    EXPECT_GT(flat[1], 20);
    EXPECT_EQ(flat[4], 30);
    EXPECT_EQ(flat[5], -30);
    std::vector<std::size_t> split(49, 0);
    split.insert(split.end(), 51, 254);
    const auto harsh = solved(histogramOf(split));
    EXPECT_LT(harsh[1], -10);
    EXPECT_EQ(harsh[3], std::round((0.49 - 0.2) * 80));
    EXPECT_EQ(harsh[4], 0) << "nearly white already";
    for (const auto& values : {flat, harsh}) {
        for (std::size_t i = 1; i < values.size(); ++i) EXPECT_EQ(values[i], std::round(values[i]));
        EXPECT_EQ(values[0], std::round(values[0] / 0.01) * 0.01);
    }
}

TEST(AutoToneTest, aPresetCountsAtItsStrength) {
    const auto histogram = histogramOf(levels(20, 200));
    const auto preset = DevelopPreset::of("", "", {{"Exposure2012", 1.0}});
    EXPECT_LT(solved(histogram, preset)[0], solved(histogram, preset.withAmount(0.5))[0]);
    EXPECT_LT(solved(histogram, preset.withAmount(0.5))[0], solved(histogram)[0]);
    EXPECT_EQ(solved(histogram, preset.withAmount(0)), solved(histogram));
}

TEST(HistogramTest, countsTheLevelsOfEveryChannel) {
    auto bitmap = Bitmap::create({4, 2}, ColorProfile::sRGB());
    for (int y = 0; y < 2; ++y) {
        for (std::size_t x = 0; x < 4; ++x) {
            auto* pixel = bitmap->row(y).data() + 4 * x;
            pixel[0] = 10;
            pixel[1] = y == 0 ? 100 : 200;
            pixel[2] = 255;
            pixel[3] = 255;
        }
    }
    const BitmapPtr image = std::move(bitmap);
    const auto wide = widened(image);
    for (const auto& picture : {image, wide}) {
        const auto histogram = Histogram::of(picture, 512);
        ASSERT_TRUE(histogram);
        EXPECT_EQ(histogram->blue[10], 1);
        EXPECT_EQ(histogram->red[255], 1);
        EXPECT_EQ(histogram->green[100], 0.5);
        EXPECT_EQ(histogram->green[200], 0.5);
        EXPECT_EQ(histogram->luminance[(77 * 255 + 150 * 100 + 29 * 10) / 256], 0.5);
    }
    const auto small = Histogram::of(image, 2);
    ASSERT_TRUE(small);
    EXPECT_EQ(small->green[150], 1) << "averaged to two pixels by one";
    EXPECT_FALSE(Histogram::of(nullptr, 512));
}

} // namespace
} // namespace kelvara
