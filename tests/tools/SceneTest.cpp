#include "samplecard/Scene.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <ostream>

namespace kelvara::samplecard {
namespace {

class SceneTest : public testing::TestWithParam<Scene> {};

INSTANTIATE_TEST_SUITE_P(All, SceneTest, testing::ValuesIn(allScenes));

TEST_P(SceneTest, theSameSeedPaintsTheSamePictureAndAnotherSeedAnother) {
    const Picture first = paint(GetParam(), 90, 60, 1);
    EXPECT_TRUE(first == paint(GetParam(), 90, 60, 1));
    EXPECT_FALSE(first == paint(GetParam(), 90, 60, 2));
}

TEST_P(SceneTest, isNeitherFlatNorBlackNorBurntOut) {
    for (std::uint32_t seed = 1; seed <= 3; ++seed) {
        for (const bool portrait : {false, true}) {
            const Picture picture =
                portrait ? paint(GetParam(), 60, 90, seed) : paint(GetParam(), 90, 60, seed);
            double sum = 0;
            double squares = 0;
            for (const std::uint16_t sample : picture.samples) {
                sum += sample / 65535.0;
                squares += (sample / 65535.0) * (sample / 65535.0);
            }
            const auto count = static_cast<double>(picture.samples.size());
            const double mean = sum / count;
            EXPECT_GT(mean, 0.06) << seed;
            EXPECT_LT(mean, 0.90) << seed;
            EXPECT_GT(std::sqrt(squares / count - mean * mean), 0.04) << seed;
        }
    }
}

} // namespace
} // namespace kelvara::samplecard
