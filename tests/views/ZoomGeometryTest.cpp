#include "views/ZoomGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace kelvara {

namespace {

/// A geometry whose image of 4000 × 3000 has the given fit in a view of the same shape.
ZoomGeometry withFit(double fit, double scale = 1) {
    ZoomGeometry geometry;
    geometry.setScale(scale);
    geometry.setViewport({4000 * fit / scale, 3000 * fit / scale});
    geometry.setPixelSize({4000, 3000});
    return geometry;
}

ZoomGeometry at(double fit, double magnification) {
    auto geometry = withFit(fit);
    geometry.jump({magnification, {2000, 1500}});
    return geometry;
}

struct Row {
    std::string name;
    double fit;
    double from;
    double to;
};
std::string rowName(const testing::TestParamInfo<Row>& row) { return row.param.name; }

class ZoomInTest : public testing::TestWithParam<Row> {};
class ZoomOutTest : public testing::TestWithParam<Row> {};
class ZoomToggleTest : public testing::TestWithParam<Row> {};

} // namespace

TEST_P(ZoomInTest, goesToTheNextStepAbove) {
    const auto& [name, fit, from, to] = GetParam();
    EXPECT_DOUBLE_EQ(at(fit, from).zoomIn().magnification, to);
}
INSTANTIATE_TEST_SUITE_P(Steps, ZoomInTest,
                         testing::Values(Row{"fromFit", 0.4, 0.4, 0.5}, Row{"fromAStep", 0.4, 0.5, 0.67},
                                         Row{"fromJustBelowAStep", 0.4, 0.9995, 1.5},
                                         Row{"throughOneHundred", 0.4, 0.67, 1.0},
                                         Row{"fromBelowTheFirstStep", 0.1, 0.1, 0.25},
                                         Row{"staysAtTheLast", 0.4, 8.0, 8.0}),
                         rowName);

TEST_P(ZoomOutTest, goesToTheNextStepBelowThatIsAboveFit) {
    const auto& [name, fit, from, to] = GetParam();
    EXPECT_DOUBLE_EQ(at(fit, from).zoomOut().magnification, to);
}
INSTANTIATE_TEST_SUITE_P(Steps, ZoomOutTest,
                         testing::Values(Row{"skipsStepsBelowFit", 0.4, 0.5, 0.4},
                                         Row{"keepsAStepAboveFit", 0.26, 0.5, 0.33},
                                         Row{"aStepThatIsFit", 0.5, 0.67, 0.5}, Row{"fromTheLast", 0.4, 8, 6},
                                         Row{"atFitStaysThere", 0.4, 0.4, 0.4}, Row{"smallImage", 1, 1.5, 1}),
                         rowName);

TEST_P(ZoomToggleTest, goesBetweenFitAndOneHundredPercent) {
    const auto& [name, fit, from, to] = GetParam();
    EXPECT_DOUBLE_EQ(at(fit, from).toggled().magnification, to);
}
INSTANTIATE_TEST_SUITE_P(Pairs, ZoomToggleTest,
                         testing::Values(Row{"largeImageFromFit", 0.4, 0.4, 1},
                                         Row{"largeImageBack", 0.4, 1, 0.4}, Row{"betweenThem", 0.4, 0.67, 1},
                                         Row{"fromFarAbove", 0.4, 8, 0.4}, Row{"smallImageFromFit", 1, 1, 2},
                                         Row{"smallImageBack", 1, 2, 1}),
                         rowName);

TEST(ZoomGeometryTest, fitNeverEnlargesAndIsOneWhileASizeIsUnknown) {
    EXPECT_DOUBLE_EQ(withFit(0.4).fit(), 0.4);
    EXPECT_DOUBLE_EQ(withFit(3).fit(), 1);
    ZoomGeometry empty;
    EXPECT_DOUBLE_EQ(empty.fit(), 1);
    empty.setPixelSize({4000, 3000});
    EXPECT_DOUBLE_EQ(empty.fit(), 1);
}

TEST(ZoomGeometryTest, oneHundredPercentIsOneImagePixelOnOneScreenPixelAtEveryScale) {
    for (const double scale : {1.0, 1.25, 2.0}) {
        auto geometry = withFit(0.4, scale);
        EXPECT_DOUBLE_EQ(geometry.fit(), 0.4) << scale;
        geometry.jump(geometry.toggled());
        const auto left = geometry.toImage({0, 0});
        const auto right = geometry.toImage({100, 0});
        EXPECT_NEAR(right.x - left.x, 100 * scale, 1e-9);
    }
}

TEST(ZoomGeometryTest, anotherScreenScaleGoesBackToFit) {
    auto geometry = at(0.4, 1);
    EXPECT_TRUE(geometry.setScale(2));
    EXPECT_TRUE(geometry.isAtFit());
    EXPECT_DOUBLE_EQ(geometry.magnification(), 0.8);
    EXPECT_FALSE(geometry.setScale(2));
}

TEST(ZoomGeometryTest, theSameSizeKeepsZoomAndPlaceAndAnotherGoesToFit) {
    auto geometry = at(0.4, 1);
    geometry.pan(-50, 20);
    const auto origin = geometry.origin();
    EXPECT_FALSE(geometry.setPixelSize({4000, 3000}));
    EXPECT_EQ(geometry.origin(), origin);
    EXPECT_DOUBLE_EQ(geometry.magnification(), 1);
    EXPECT_TRUE(geometry.setPixelSize({3000, 4000}));
    EXPECT_TRUE(geometry.isAtFit());
    EXPECT_FALSE(geometry.setPixelSize({0, 4000}));
    EXPECT_EQ(geometry.pixelSize(), (ZoomSize{3000, 4000}));
}

TEST(ZoomGeometryTest, theTrueSizeAfterAGuessKeepsMagnificationAndPlace) {
    auto geometry = at(0.4, 1);
    geometry.pan(-200, -100);
    const auto centre = geometry.toImage(geometry.viewCentre());
    geometry.correctPixelSize({8000, 6000});
    EXPECT_DOUBLE_EQ(geometry.magnification(), 1);
    EXPECT_NEAR(geometry.toImage(geometry.viewCentre()).x, centre.x * 2, 1e-6);
    EXPECT_NEAR(geometry.toImage(geometry.viewCentre()).y, centre.y * 2, 1e-6);
}

TEST(ZoomGeometryTest, aFittedImageFollowsTheWindowAndAZoomedOneKeepsItsMiddle) {
    auto fitted = withFit(0.4);
    EXPECT_TRUE(fitted.setViewport({800, 600}));
    EXPECT_DOUBLE_EQ(fitted.magnification(), 0.2);
    EXPECT_TRUE(fitted.isAtFit());

    auto zoomed = at(0.4, 1);
    const auto middle = zoomed.toImage(zoomed.viewCentre());
    EXPECT_FALSE(zoomed.setViewport({800, 900}));
    EXPECT_DOUBLE_EQ(zoomed.magnification(), 1);
    EXPECT_EQ(zoomed.toImage(zoomed.viewCentre()), middle);
}

TEST(ZoomGeometryTest, theWheelStaysBetweenFitAndEightHundredPercentAndKeepsThePointUnderThePointer) {
    auto geometry = at(0.4, 1);
    const ZoomPoint pointer{300, 200};
    EXPECT_DOUBLE_EQ(geometry.scrolled(-1000, false, pointer).magnification, 0.4);
    EXPECT_DOUBLE_EQ(geometry.scrolled(1000, true, pointer).magnification, 8);
    EXPECT_DOUBLE_EQ(geometry.scrolled(1, false, pointer).magnification, std::exp(0.15));
    EXPECT_DOUBLE_EQ(geometry.scrolled(1, true, pointer).magnification, std::exp(0.01));
    const auto under = geometry.toImage(pointer);
    geometry.jump(geometry.scrolled(2, false, pointer));
    EXPECT_NEAR(geometry.toView(under).x, pointer.x, 1e-9);
    EXPECT_NEAR(geometry.toView(under).y, pointer.y, 1e-9);
}

TEST(ZoomGeometryTest, theImageIsCentredWhereItIsSmallerAndCoversTheViewWhereItIsLarger) {
    ZoomGeometry geometry;
    geometry.setViewport({1000, 1000});
    geometry.setPixelSize({4000, 800});
    EXPECT_DOUBLE_EQ(geometry.origin().x, 0);
    EXPECT_DOUBLE_EQ(geometry.origin().y, -1600); // 200 rows on screen, 400 above them
    geometry.jump({1, {2000, 400}});
    geometry.pan(100000, 100000);
    EXPECT_DOUBLE_EQ(geometry.origin().x, 0);
    EXPECT_DOUBLE_EQ(geometry.origin().y, -100);
    geometry.pan(-100000, 0);
    EXPECT_DOUBLE_EQ(geometry.origin().x, 3000);
}

TEST(ZoomGeometryTest, stateIsTheRoundedTargetAndFitHasATolerance) {
    auto geometry = withFit(0.4);
    EXPECT_EQ(geometry.state(), (ZoomState{40, true}));
    geometry.aim(0.4019);
    EXPECT_TRUE(geometry.isAtFit());
    geometry.aim(0.4021);
    EXPECT_FALSE(geometry.isAtFit());
    geometry.aim(0.675);
    EXPECT_EQ(geometry.state(), (ZoomState{68, false}));
    EXPECT_FALSE(at(0.4, 1).usesNearestNeighbour());
    EXPECT_TRUE(at(0.4, 1.5).usesNearestNeighbour());
}

TEST(ZoomGeometryTest, animationTakesEqualTimeForEqualRatiosAndEndsExactly) {
    EXPECT_DOUBLE_EQ(animatedMagnification(0.5, 2, 0), 0.5);
    EXPECT_DOUBLE_EQ(animatedMagnification(0.5, 2, 0.18), 2);
    EXPECT_DOUBLE_EQ(animatedMagnification(0.5, 2, 7), 2);
    // Half of the way in ratios is eased time 0.5: t = 1 − ∛0.5.
    const auto half = 0.18 * (1 - std::cbrt(0.5));
    EXPECT_NEAR(animatedMagnification(0.5, 2, half), 1, 1e-9);
    EXPECT_NEAR(animatedMagnification(8, 0.5, half), 2, 1e-9);
}

} // namespace kelvara
