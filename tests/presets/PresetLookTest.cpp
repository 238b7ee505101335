#include "presets/PresetLook.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace kelvara {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using List = std::vector<double>;
using Curve = PresetLook::PointCurve;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(PresetLookTest, noSettingsAreTheIdentity) {
    for (const auto& look : {PresetLook{PresetSettings{}}, PresetLook{}}) {
        EXPECT_TRUE(look.isIdentity);
        EXPECT_FALSE(look.isMonochrome || look.hasHSL || look.vignette || look.grain || look.master ||
                     look.red);
        EXPECT_EQ(look.saturation, 1);
        EXPECT_EQ(look.gradeBlending, 0.5);
        EXPECT_THAT(look.linearGain, Each(testing::DoubleEq(1)));
        EXPECT_THAT(look.grades, IsEmpty());
        EXPECT_THAT(look.parametric.zones, IsEmpty());
    }
}

TEST(PresetLookTest, whatCountsAsTheIdentity) {
    const std::vector<std::pair<PresetSettings, bool>> rows{
        {{{"ToneCurvePV2012", List{0, 0, 255, 255}}}, true},
        {{{"ToneCurvePV2012", List{0, 0, 255, 250}}}, false},
        {{{"ToneCurvePV2012", List{}}}, true},
        {{{"ToneCurvePV2012", List{3}}}, true},
        {{{"ToneCurvePV2012", "0, 1"}}, true},
        {{{"Exposure2012", 0.001}}, true},
        {{{"Exposure2012", 0.1}}, false},
        {{{"Exposure2012", "1"}, {"Contrast2012", true}, {"Shadows2012", List{50}}}, true},
        {{{"Exposure2012", nan}, {"Contrast2012", infinity}, {"Temperature", nan}}, true},
        {{{"Exposure", 2.0}, {"Brightness", 50.0}, {"ProcessVersion", "5.7"}}, true}, // of older versions
        {{{"CameraProfile", "Adobe Vivid"}}, false},
        {{{"CameraProfile", "adobe vivid"}}, true},
        {{{"Clarity2012", 1.0}}, false},
        {{{"Texture", -1.0}}, false},
        {{{"PostCropVignetteAmount", -20.0}}, false},
        {{{"GrainAmount", -5.0}}, true},
        {{{"GrainAmount", 5.0}}, false},
        {{{"ConvertToGrayscale", true}}, false},
        {{{"ConvertToGrayscale", "True"}}, true},
        {{{"GrayMixerRed", 100.0}}, true},
        {{{"ColorGradeGlobalHue", 50.0}}, true},
        {{{"WhiteBalance", "As Shot"}, {"Temperature", 3000.0}, {"Tint", 50.0}}, true},
        {{{"Temperature", 3000.0}}, true},
        {{{"WhiteBalance", "Custom"}, {"Temperature", 5500.0}, {"Tint", 0.0}}, true},
        {{{"WhiteBalance", "Custom"}, {"Temperature", 0.0}}, true},
        {{{"WhiteBalance", ""}, {"Temperature", 3000.0}}, false},
        {{{"WhiteBalance", "Custom"}, {"Tint", 20.0}}, false},
        {{{"IncrementalTint", 20.0}}, false},
    };
    for (const auto& [settings, isIdentity] : rows) {
        EXPECT_EQ(PresetLook{settings}.isIdentity, isIdentity) << settings.begin()->first;
    }
}

TEST(PresetLookTest, fieldsFromSettings) {
    const PresetLook look{{{"Saturation", -100.0},
                           {"Dehaze", 50.0},
                           {"CameraProfile", "Adobe Vivid"},
                           {"Contrast2012", 10.0},
                           {"Blacks2012", 20.0},
                           {"PostCropVignetteAmount", -20.0},
                           {"PostCropVignetteFeather", 10.0},
                           {"GrainAmount", 30.0},
                           {"LuminanceAdjustmentMagenta", 40.0},
                           {"ParametricDarks", 10.0},
                           {"ParametricHighlights", -10.0},
                           {"ColorGradeGlobalHue", 50.0},
                           {"ColorGradeBalance", 70.0},
                           {"SplitToningShadowSaturation", 25.0},
                           {"SplitToningHighlightSaturation", 0.0},
                           {"SplitToningBalance", -30.0}}};
    EXPECT_TRUE(look.isMonochrome);
    EXPECT_EQ(look.saturation, 0);
    EXPECT_DOUBLE_EQ(look.contrast, 0.5 * 0.35 + 0.1 + 0.1);
    EXPECT_DOUBLE_EQ(look.blacks, 0.2 - 0.15);
    EXPECT_EQ(look.vignette, (PresetLook::Vignette{-0.2, 0.5, 0.1}));
    EXPECT_EQ(look.grain, (PresetLook::Grain{0.3, 0.25}));
    EXPECT_TRUE(look.hasHSL);
    EXPECT_THAT(look.luminanceShift, ElementsAre(0, 0, 0, 0, 0, 0, 0, 0.4));
    ASSERT_EQ(look.parametric.zones.size(), 2U);
    EXPECT_EQ(look.parametric.zones[0].lower, 0.125);
    EXPECT_EQ(look.parametric.zones[0].upper, 0.625);
    EXPECT_EQ(look.parametric.zones[1].lower, 0.625);
    EXPECT_EQ(look.parametric.zones[1].upper, 1);
    ASSERT_EQ(look.grades.size(), 1U) << "a hue alone is no colour grading, so the split toning counts";
    EXPECT_EQ(look.grades[0].range, PresetLook::Range::shadows);
    EXPECT_EQ(look.grades[0].saturation, 0.25);
    EXPECT_THAT(look.grades[0].tint, ElementsAre(1 - 0.299, -0.299, -0.299));
    EXPECT_EQ(look.gradeBalance, -0.3);
}

TEST(PresetLookTest, pointCurves) {
    EXPECT_FALSE(Curve::through({}));
    EXPECT_FALSE(Curve::through({5}));
    EXPECT_EQ((*Curve::through({255, 51}))(0.3), 0.2) << "one point is a constant";
    EXPECT_EQ(Curve::through({0, 0, 255, 255, 7})->xs.size(), 2U) << "an odd value is dropped";
    const auto twice = *Curve::through({255, 255, 51, 10, 0, 0, 51, 102});
    EXPECT_THAT(twice.xs, ElementsAre(0, 0.2, 1));
    EXPECT_EQ(twice(0.2), 0.4) << "of points at one place the last counts";
    EXPECT_EQ(twice.m.front(), 0);
    EXPECT_EQ(twice.m.back(), 0);

    const auto straight = *Curve::through({0, 0, 64, 64, 100, 100, 255, 255});
    for (const double x : {0.0, 0.1, 0.3, 0.9, 1.0}) EXPECT_NEAR(straight(x), x, 1e-15);
    const auto inner = *Curve::through({51, 25.5, 204, 229.5});
    EXPECT_EQ(inner(0), 0.1);
    EXPECT_EQ(inner(1), 0.9);
    EXPECT_EQ(inner(nan), 0.1);
}

TEST(PresetLookTest, noSettingsMakeAColorThatIsNone) {
    constexpr std::array keys{
        "Exposure2012",
        "IncrementalTemperature",
        "IncrementalTint",
        "Dehaze",
        "Contrast2012",
        "Highlights2012",
        "Whites2012",
        "Blacks2012",
        "ParametricLights",
        "ParametricShadows",
        "ParametricShadowSplit",
        "ParametricMidtoneSplit",
        "HueAdjustmentRed",
        "SaturationAdjustmentRed",
        "LuminanceAdjustmentRed",
        "GrayMixerRed",
        "Saturation",
        "Vibrance",
        "ColorGradeGlobalHue",
        "ColorGradeGlobalSat",
        "ColorGradeShadowLum",
        "ColorGradeBlending",
        "ColorGradeBalance",
        "Temperature",
    };
    constexpr std::array extremes{1e308, -1e308, 1e-308, 5e-324, -1e5, 1e5, -15.0 / 0.7, 0.0};
    std::mt19937 random{1};
    for (int i = 0; i < 3000; ++i) {
        PresetSettings settings{{"WhiteBalance", "Custom"}, {"ConvertToGrayscale", random() % 4 == 0}};
        for (const auto* key : keys) {
            if (random() % 4 == 0) settings[key] = extremes[random() % extremes.size()];
        }
        List curve;
        for (auto size = random() % 8; size > 0; --size)
            curve.push_back(extremes[random() % extremes.size()]);
        if (random() % 2 == 0) settings["ToneCurvePV2012"] = curve;
        const PresetLook look{settings};
        for (const auto& color : {RGB{0, 0, 0}, RGB{1, 1, 1}, RGB{1, 0.2, 0.1}, RGB{0.1, 0.5, 0.9}}) {
            for (const double c : look.apply(color)) ASSERT_TRUE(c >= 0 && c <= 1) << i << ": " << c;
        }
    }
}

} // namespace
} // namespace kelvara
