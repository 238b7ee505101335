#include "presets/DrawingTest.h"

#include "imaging/ColorTransform.h"

#include <gtest/gtest.h>
#include <hwy/highway.h>
#include <lcms2.h>

#include <algorithm>
#include <cstring>
#include <sched.h>

namespace kelvara {
namespace {

using namespace drawing;

BitmapPtr draw(const DevelopPreset& preset, const BitmapPtr& source, Depth depth = Depth::eight) {
    return PresetRenderer::apply(preset, source, depth, {});
}

double clamped(double x) { return std::clamp(x, 0.0, 1.0); }

/// What the preset's cube holds at one of its points, red, green and blue.
RGB cubePoint(const DevelopPreset& preset, std::array<int, 3> at) {
    const RGB in{at[0] / 32.0, at[1] / 32.0, at[2] / 32.0};
    auto out = preset.look.apply(in);
    for (std::size_t c = 0; c < 3; ++c) out[c] = in[c] + (out[c] - in[c]) * preset.amount;
    return preset.adjustments.isIdentity ? out : preset.adjustments.apply(out);
}

/// Interpolated between its eight neighbours.
RGB throughCube(const DevelopPreset& preset, const RGB& color) {
    RGB sum{};
    for (int corner = 0; corner < 8; ++corner) {
        std::array<int, 3> at{};
        double weight = 1;
        for (int c = 0; c < 3; ++c) {
            const auto i = static_cast<std::size_t>(c);
            const double place = clamped(color[i]) * 32;
            const int below = std::min(static_cast<int>(place), 31);
            const bool isNext = (corner >> c & 1) != 0;
            at[i] = below + (isNext ? 1 : 0);
            weight *= isNext ? place - below : 1 - (place - below);
        }
        const auto point = cubePoint(preset, at);
        for (std::size_t c = 0; c < 3; ++c) sum[c] += weight * point[c];
    }
    return sum;
}

RGB color(const Bitmap& bitmap, int x, int y) {
    return {value(bitmap, x, y, 2), value(bitmap, x, y, 1), value(bitmap, x, y, 0)};
}

/// How far a drawn pixel is from what it should be, 0 to 1.
double difference(const Bitmap& bitmap, int x, int y, const RGB& expected) {
    const auto drawn = color(bitmap, x, y);
    double worst = 0;
    for (std::size_t c = 0; c < 3; ++c) worst = std::max(worst, std::abs(drawn[c] - clamped(expected[c])));
    return worst;
}

TEST(PresetDrawingTest, colorsAreTrilinearInTheCube) {
    auto edited = preset(strongColors(), 0.35);
    edited.adjustments = PresetLook{{{"Exposure2012", -0.7}, {"Highlights2012", -50.0}}};
    auto onlyEdits = edited;
    onlyEdits.amount = 0;
    const std::array presets{preset(strongColors()), edited, onlyEdits,
                             preset({{"ConvertToGrayscale", true}, {"GrayMixerRed", 80.0}})};
    constexpr std::array<PixelSize, 4> sizes{{{1, 1}, {1, 9}, {517, 1}, {61, 13}}};
    std::mt19937 random{3};
    std::uniform_real_distribution<double> anyNumber{0, 1};
    for (const auto& tried : presets) {
        for (const auto size : sizes) {
            for (const auto format : {PixelFormat::bgrx8, PixelFormat::bgrx16}) {
                const auto source = picture(size, format, ColorProfile::sRGB(), [&](int, int, int) {
                    return random() % 8 == 0 ? std::round(anyNumber(random)) : anyNumber(random);
                });
                for (const auto depth : {Depth::eight, Depth::full}) {
                    const auto result = draw(tried, source, depth);
                    ASSERT_TRUE(result && result->size() == size);
                    EXPECT_EQ(result->format(),
                              depth == Depth::eight ? PixelFormat::bgrx8 : PixelFormat::bgrx16);
                    const double rounding = (depth == Depth::eight ? 0.51 : 0.7) / largest(*result);
                    for (int y = 0; y < size.height; ++y) {
                        for (int x = 0; x < size.width; ++x) {
                            EXPECT_LE(difference(*result, x, y, throughCube(tried, color(*source, x, y))),
                                      rounding);
                            EXPECT_EQ(value(*result, x, y, 3), 1);
                        }
                    }
                }
            }
        }
    }
}

TEST(PresetDrawingTest, colorsOfOtherSpacesAreDrawnInSRGBAndStayInTheirSpace) {
    const auto tried = preset(strongColors());
    std::mt19937 random{4};
    std::uniform_real_distribution<double> anyNumber{0, 1};
    for (const auto& profile : {ColorProfile::displayP3(), ColorProfile::adobeRGB(),
                                ColorProfile::fromGamma(Primaries::sRGB, 1.8)}) {
        constexpr PixelSize size{300, 20};
        const auto source =
            picture(size, PixelFormat::bgrx16, profile, [&](int, int, int) { return anyNumber(random); });
        const auto inSRGB = converted(source, ColorProfile::sRGB(), PixelFormat::bgrx16, {});
        const auto expected = converted(
            picture(size, PixelFormat::bgrx16, ColorProfile::sRGB(),
                    [&](int x, int y, int c) {
                        return throughCube(tried, color(*inSRGB, x, y))[static_cast<std::size_t>(2 - c)];
                    }),
            profile, PixelFormat::bgrx16, {});
        const auto result = draw(tried, source, Depth::full);
        EXPECT_EQ(*result->profile(), *profile);
        double worst = 0;
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x)
                worst = std::max(worst, difference(*result, x, y, color(*expected, x, y)));
        }
        EXPECT_LE(worst, 1.0 / 255);

        // At little strength, colours beyond sRGB are nearly those of the photo.
        const auto faint = draw(preset(strongColors(), 1e-6), source, Depth::full);
        worst = 0;
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x)
                worst = std::max(worst, difference(*faint, x, y, color(*source, x, y)));
        }
        EXPECT_LE(worst, 2.0 / 255);
    }
}

/// Display P3 as a profile of tables, not of curves and a matrix.
ColorProfilePtr tableProfile() {
    const auto& p3 = ColorProfile::displayP3()->icc();
    auto* given = cmsOpenProfileFromMem(p3.data(), static_cast<cmsUInt32Number>(p3.size()));
    auto* lab = cmsCreateLab2Profile(nullptr);
    auto* profile = cmsCreateProfilePlaceholder(nullptr);
    cmsSetProfileVersion(profile, 2.1);
    cmsSetDeviceClass(profile, cmsSigDisplayClass);
    cmsSetColorSpace(profile, cmsSigRgbData);
    cmsSetPCS(profile, cmsSigLabData);
    cmsWriteTag(profile, cmsSigMediaWhitePointTag, cmsD50_XYZ());
    const auto writeTable = [&](cmsTagSignature tag, cmsHPROFILE from, cmsUInt32Number input, cmsHPROFILE to,
                                cmsUInt32Number output) {
        constexpr cmsUInt32Number points = 33;
        auto* transform = cmsCreateTransform(from, input, to, output, INTENT_RELATIVE_COLORIMETRIC,
                                             cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE);
        auto* pipeline = cmsPipelineAlloc(nullptr, 3, 3);
        auto* table = cmsStageAllocCLut16bit(nullptr, points, 3, 3, nullptr);
        cmsStageSampleCLut16bit(
            table,
            [](const cmsUInt16Number* in, cmsUInt16Number* out, void* with) {
                cmsDoTransform(with, in, out, 1);
                return 1;
            },
            transform, 0);
        cmsPipelineInsertStage(pipeline, cmsAT_END, table);
        cmsWriteTag(profile, tag, pipeline);
        cmsPipelineFree(pipeline);
        cmsDeleteTransform(transform);
    };
    writeTable(cmsSigAToB0Tag, given, TYPE_RGB_16, lab, TYPE_LabV2_16);
    writeTable(cmsSigBToA0Tag, lab, TYPE_LabV2_16, given, TYPE_RGB_16);
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    std::vector<std::uint8_t> icc(size);
    cmsSaveProfileToMem(profile, icc.data(), &size);
    for (auto* handle : {profile, lab, given}) cmsCloseProfile(handle);
    return ColorProfile::fromIcc(icc);
}

TEST(PresetDrawingTest, spacesOfTablesAreDrawnNearly) {
    const auto profile = tableProfile();
    ASSERT_NE(profile, nullptr);
    constexpr PixelSize size{256, 40};
    const auto tried = preset({{"Exposure2012", 0.5}, {"Vibrance", 40.0}});
    const auto muted = [](int x, int y, int c) { return 0.2 + 0.002 * x + 0.003 * ((y * (c + 1)) % 40); };
    const auto exactly = draw(tried, picture(size, PixelFormat::bgrx8, ColorProfile::displayP3(), muted));
    const auto nearly = draw(tried, picture(size, PixelFormat::bgrx8, profile, muted));
    EXPECT_EQ(*nearly->profile(), *profile);
    double worst = 0;
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x)
            worst = std::max(worst, difference(*nearly, x, y, color(*exactly, x, y)));
    }
    EXPECT_LE(worst, 4.0 / 255);
}

/// Separable, over the whole picture, which goes on as it ends.
std::vector<double> blurred(const std::vector<double>& from, PixelSize size, double sigma) {
    const int reach = static_cast<int>(sigma * 5) + 1;
    std::vector<double> weights;
    double sum = 0;
    for (int i = -reach; i <= reach; ++i) sum += weights.emplace_back(std::exp(-0.5 * i * i / sigma / sigma));
    const auto pass = [&](const std::vector<double>& in, bool isAcross) {
        std::vector<double> out(in.size());
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                for (int i = -reach; i <= reach; ++i) {
                    const int u = isAcross ? std::clamp(x + i, 0, size.width - 1) : x;
                    const int v = isAcross ? y : std::clamp(y + i, 0, size.height - 1);
                    out[static_cast<std::size_t>(y * size.width + x)] +=
                        weights[static_cast<std::size_t>(i + reach)] / sum *
                        in[static_cast<std::size_t>(v * size.width + u)];
                }
            }
        }
        return out;
    };
    return pass(pass(from, true), false);
}

TEST(PresetDrawingTest, localContrastFollowsAGaussian) {
    struct Case {
        PixelSize size;
        double texture, clarity, strength;
    };
    // Reduced by nothing, by two, by several and, with texture before clarity, in two steps.
    for (const auto& [size, texture, clarity, strength] : {Case{{1, 1}, 100, 100, 1},
                                                           {{1, 180}, 100, 100, 1},
                                                           {{130, 99}, 0, 100, 1},
                                                           {{333, 90}, 100, -70, 0.5},
                                                           {{701, 60}, 0, 100, 1},
                                                           {{2101, 21}, 100, 0, 1},
                                                           {{2101, 21}, 100, 100, 0.5},
                                                           {{20, 2500}, -100, 80, 1}}) {
        const auto source = mixedPicture(size, PixelFormat::bgrx16);
        const auto result =
            draw(preset({{"Texture", texture}, {"Clarity2012", clarity}}, strength), source, Depth::full);
        double worst = 0;
        for (int c = 0; c < 3; ++c) {
            std::vector<double> values;
            for (int y = 0; y < size.height; ++y) {
                for (int x = 0; x < size.width; ++x) values.push_back(value(*source, x, y, c));
            }
            for (const auto& [amount, share] :
                 {std::pair{texture / 100 * strength * 0.6, 0.004}, {clarity / 100 * strength * 0.8, 0.02}}) {
                const double radius = size.longestSide() * share;
                if (amount == 0 || radius < 0.5) continue;
                const auto soft = blurred(values, size, radius);
                for (std::size_t i = 0; i < values.size(); ++i) values[i] += amount * (values[i] - soft[i]);
            }
            for (std::size_t i = 0; i < values.size(); ++i) {
                const int x = static_cast<int>(i) % size.width, y = static_cast<int>(i) / size.width;
                worst = std::max(worst, std::abs(value(*result, x, y, c) - clamped(values[i])));
            }
        }
        EXPECT_LE(worst, 1.0 / 255) << size.width << "x" << size.height << " " << texture << " " << clarity;
    }
}

TEST(PresetDrawingTest, vignettesFollowTheGradient) {
    constexpr PixelSize size{321, 200};
    const auto source = picture(size, PixelFormat::bgrx16, ColorProfile::displayP3(),
                                [](int x, int, int c) { return c == 1 ? 1.0 : x / 400.0; });
    for (const auto& [amount, midpoint, feather] :
         {std::array{-80.0, 50.0, 50.0}, {60.0, 20.0, 90.0}, {-100.0, 70.0, 0.0}}) {
        const PresetSettings settings{{"PostCropVignetteAmount", amount},
                                      {"PostCropVignetteMidpoint", midpoint},
                                      {"PostCropVignetteFeather", feather}};
        const auto result = draw(preset(settings, 0.4), source, Depth::full);
        const double radius = size.height * 0.5 * std::sqrt(2), m = midpoint / 100 * 0.6 + 0.25,
                     f = feather / 100 * 0.6;
        const double inner = (1 - f) * m * radius, outer = std::max((m * (1 + f) + 0.15) * radius, inner + 1);
        const double strength = std::min(1.0, std::abs(amount) / 100 * 0.85);
        double worst = 0;
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                const double across = (x + 0.5 - size.width / 2.0) * size.height / size.width;
                const double d = std::hypot(across, y + 0.5 - size.height / 2.0);
                const double share = clamped((d - inner) / (outer - inner)) * strength;
                auto expected = color(*source, x, y);
                for (auto& v : expected) v = amount < 0 ? v * (1 - share) : 1 - (1 - v) * (1 - share);
                worst = std::max(worst, difference(*result, x, y, expected));
            }
        }
        EXPECT_LE(worst, 2.0 / 65535);
        EXPECT_EQ(draw(preset(settings, 0), source), source);
    }
}

TEST(PresetDrawingTest, grainIsGreyNoiseAroundZeroOfTheStatedSize) {
    struct Case {
        PixelSize size;
        double amount, grainSize, variance; // the variance is that of the place between random numbers
    };
    const double inOneDirection = 2.0 / 3; // of a random number, after interpolation at every place between
    for (const auto& [size, amount, grainSize, variance] :
         {Case{{1000, 400}, 60, 25, 1},
          {{1600, 250}, 100, 0, 1},
          {{8000, 90}, 50, 100, inOneDirection * inOneDirection}}) {
        const auto grey =
            picture(size, PixelFormat::bgrx16, ColorProfile::sRGB(), [](int, int, int) { return 0.5; });
        const auto tried = preset({{"GrainAmount", amount}, {"GrainSize", grainSize}});
        const auto result = draw(tried, grey, Depth::full);
        const auto again = draw(tried, grey, Depth::full);
        const double pixels = (grainSize / 100 * 1.6 + 0.6) * size.longestSide() / 4000;
        const double most = amount / 100 * 0.14 * std::min(std::sqrt(pixels), 1.0);
        double sum = 0, squares = 0, largestNoise = 0, neighbours = 0;
        for (int y = 0; y < size.height; ++y) {
            EXPECT_EQ(std::memcmp(result->row(y).data(), again->row(y).data(), result->rowBytes()), 0);
            for (int x = 0; x < size.width; ++x) {
                const auto [r, g, b] = color(*result, x, y);
                ASSERT_TRUE(r == g && g == b);
                const double noise = r - value(*grey, x, y, 0);
                sum += noise;
                squares += noise * noise;
                largestNoise = std::max(largestNoise, std::abs(noise));
                if (x > 0) neighbours += noise * (value(*result, x - 1, y, 0) - value(*grey, x, y, 0));
            }
        }
        const auto count = static_cast<double>(size.pixels());
        EXPECT_NEAR(sum / count, 0, 0.01 * most);
        EXPECT_LE(largestNoise, most + 1e-4);
        EXPECT_NEAR(squares / count / (most * most / 3), variance, 0.03);
        if (variance == 1)
            EXPECT_NEAR(neighbours / squares, 0, 0.02);
        else
            EXPECT_GT(neighbours / squares, 0.5);
    }
}

TEST(PresetDrawingTest, everyProcessorAndNumberOfThreadsGivesTheSameBytes) {
    auto settings = strongColors();
    settings.insert(
        {{"Clarity2012", 60.0}, {"Texture", 40.0}, {"PostCropVignetteAmount", -30.0}, {"GrainAmount", 30.0}});
    const auto tried = preset(settings, 0.9);
    cpu_set_t all;
    ASSERT_EQ(::sched_getaffinity(0, sizeof all, &all), 0);
    for (const auto& [size, format, profile] :
         {std::tuple{PixelSize{2503, 1700}, PixelFormat::bgrx8, ColorProfile::sRGB()}, // two bands
          {{301, 203}, PixelFormat::bgrx16, ColorProfile::displayP3()}}) {
        const auto source = mixedPicture(size, format, profile);
        const auto depth = format == PixelFormat::bgrx8 ? Depth::eight : Depth::full;
        const auto expected = draw(tried, source, depth);
        const auto isExpected = [&] {
            const auto result = draw(tried, source, depth);
            return std::memcmp(result->data(), expected->data(), expected->byteCount()) == 0;
        };
        const auto targets = hwy::SupportedAndGeneratedTargets();
        EXPECT_GE(targets.size(), 2U);
        for (const auto target : targets) {
            hwy::SetSupportedTargetsForTest(target);
            hwy::GetChosenTarget().Update(hwy::SupportedTargets());
            EXPECT_TRUE(isExpected()) << hwy::TargetName(target);
        }
        hwy::SetSupportedTargetsForTest(0);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<unsigned>(::sched_getcpu()), &one);
        ASSERT_EQ(::sched_setaffinity(0, sizeof one, &one), 0);
        EXPECT_TRUE(isExpected()) << "on one processor";
        ::sched_setaffinity(0, sizeof all, &all);
    }
}

TEST(PresetDrawingTest, bandsAreWholeRowsOfAtMostFourMillionPixels) {
    EXPECT_EQ(rowsOfBand({2000, 2000}), 2000);
    EXPECT_EQ(rowsOfBand({4'000'000, 1}), 1);
    EXPECT_EQ(rowsOfBand({1, 4'000'001}), 4'000'000);
    EXPECT_EQ(rowsOfBand({2001, 2000}), 1999);
    EXPECT_EQ(rowsOfBand({5'000'000, 3}), 1);
}

TEST(PresetDrawingTest, nothingToDoGivesTheSourceAndNothingWantedNothing) {
    const auto source = mixedPicture({40, 30});
    std::stop_source stop;
    EXPECT_EQ(draw(preset({}), source, Depth::full), source);
    EXPECT_EQ(draw(preset({{"GrainAmount", 50.0}, {"Exposure2012", 1.0}}, 0), source), source);
    EXPECT_NE(draw(preset({{"GrainAmount", 50.0}}), source), source);
    EXPECT_EQ(draw(preset({}), nullptr), nullptr);
    stop.request_stop();
    const auto tried = preset({{"Clarity2012", 50.0}});
    EXPECT_EQ(PresetRenderer::apply(tried, source, Depth::eight, stop.get_token()), nullptr);
    EXPECT_EQ(drawn(tried, ColorCube{tried}, *source, Depth::eight, stop.get_token()), nullptr);
}

TEST(PresetDrawingTest, whoGivesAPictureAwayGetsItDrawnOver) {
    const auto all = preset({{"Clarity2012", 50.0}, {"Exposure2012", 1.0}, {"GrainAmount", 50.0}});
    auto given = mixedPicture({90, 70});
    const auto* const address = given.get();
    const auto expected = draw(all, given);
    const auto widened = PresetRenderer::apply(all, mixedPicture({90, 70}), Depth::full, {});
    const auto drawn = PresetRenderer::apply(all, std::move(given), Depth::eight, {});
    EXPECT_NE(expected.get(), address);
    EXPECT_EQ(drawn.get(), address);
    EXPECT_EQ(std::memcmp(drawn->data(), expected->data(), expected->byteCount()), 0);
    EXPECT_EQ(widened->format(), PixelFormat::bgrx16);
}

TEST(PresetDrawingTest, settingsBeyondAllMeasureAreDrawn) {
    const double huge = 1e308;
    const auto source = mixedPicture({90, 70});
    for (const double sign : {1.0, -1.0}) {
        for (const auto* key :
             {"Clarity2012", "PostCropVignetteAmount", "PostCropVignetteMidpoint", "PostCropVignetteFeather",
              "GrainSize", "GrainAmount", "Exposure2012", "Texture"}) {
            PresetSettings settings{{"PostCropVignetteAmount", 50.0}, {"GrainAmount", 50.0}};
            settings[key] = sign * huge;
            EXPECT_NE(draw(preset(settings), source), nullptr) << key;
        }
    }
}

} // namespace
} // namespace kelvara
