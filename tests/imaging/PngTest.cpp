#include "imaging/ColorTransform.h"
#include "imaging/DecodingTest.h"
#include "imaging/PngMaker.h"

#include <lcms2.h>

#include <algorithm>

#include <zlib.h>

namespace kelvara {
namespace {

PngRecipe::Pixel deep(Color color, int opacity = 255) {
    const auto wide = [](int value) { return static_cast<std::uint16_t>(value * 257); };
    return {wide(color.red), wide(color.green), wide(color.blue), wide(opacity)};
}

PngRecipe pngQuarters(int colorType, int depth, PixelSize size = {64, 48}) {
    PngRecipe recipe{.size = size, .colorType = colorType, .depth = depth};
    recipe.paint = [size](int x, int y) {
        const bool isLeft = x < size.width / 2;
        if (y < size.height / 2) return deep(isLeft ? red : green);
        return deep(isLeft ? blue : white);
    };
    if (colorType == PNG_COLOR_TYPE_PALETTE) {
        recipe.describe = [](png_structp png, png_infop info) {
            const std::array<png_color, 4> colors{{{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 255}}};
            png_set_PLTE(png, info, colors.data(), 4);
        };
    }
    return recipe;
}

class PngTest : public testing::Test {
protected:
    BitmapPtr decode(const Bytes& bytes, std::optional<int> maximum = {}) {
        return ImageDecoder::decodeOriginal(writeFile(folder, "a.jpg", bytes), maximum, {});
    }
    Color first(const PngRecipe& recipe) {
        const auto image = ImageDecoder::prepareForDisplay(decode(makePng(recipe)), {});
        return image ? colorAt(*image, 0, 0) : Color{-1, -1, -1};
    }

    TemporaryFolder folder;
};

TEST_F(PngTest, everyKindShowsItsColours) {
    struct Kind {
        int colorType;
        std::vector<int> depths;
    };
    const std::vector<Kind> kinds{{PNG_COLOR_TYPE_GRAY, {1, 2, 4, 8, 16}},
                                  {PNG_COLOR_TYPE_GRAY_ALPHA, {8, 16}},
                                  {PNG_COLOR_TYPE_PALETTE, {2, 4, 8}},
                                  {PNG_COLOR_TYPE_RGB, {8, 16}},
                                  {PNG_COLOR_TYPE_RGBA, {8, 16}}};
    for (const auto& [colorType, depths] : kinds) {
        const bool isGrey = (colorType & PNG_COLOR_MASK_COLOR) == 0;
        const std::array<Color, 4> greys{white, black, black, white}; // the red parts
        const std::array<Color, 4> colors{red, green, blue, white};
        for (const auto depth : depths) {
            for (const bool isInterlaced : {false, true}) {
                auto recipe = pngQuarters(colorType, depth);
                recipe.isInterlaced = isInterlaced;
                for (const auto maximum : {std::optional<int>{}, std::optional{20}}) {
                    const auto image = decode(makePng(recipe), maximum);
                    ASSERT_TRUE(image) << colorType << ' ' << depth;
                    EXPECT_EQ(image->size(), (maximum ? PixelSize{20, 15} : PixelSize{64, 48}));
                    const auto seen = corners(*image);
                    for (std::size_t i = 0; i < seen.size(); ++i) {
                        EXPECT_TRUE(isNear(seen[i], isGrey ? greys[i] : colors[i], 0))
                            << colorType << ' ' << depth << " corner " << i;
                    }
                }
            }
        }
    }
}

TEST_F(PngTest, whatIsTransparentLiesOnWhite) {
    PngRecipe recipe{.colorType = PNG_COLOR_TYPE_RGBA};
    recipe.paint = [](int, int) { return deep({200, 100, 0}, 51); };
    EXPECT_TRUE(isNear(first(recipe), {244, 224, 204}, 1));
    PngRecipe keyed{.depth = 16}; // one colour stands for nothing
    keyed.paint = [](int x, int) { return deep(x == 0 ? red : blue); };
    keyed.describe = [](png_structp png, png_infop info) {
        png_color_16 color{};
        color.red = 65535;
        png_set_tRNS(png, info, nullptr, 0, &color);
    };
    EXPECT_TRUE(isNear(first(keyed), white, 0));
}

TEST_F(PngTest, coloursAreWhatTheFileSays) {
    const auto shown = [this](auto describe, int colorType = PNG_COLOR_TYPE_RGB) {
        PngRecipe recipe{.colorType = colorType};
        recipe.paint = [](int, int) { return deep({120, 180, 100}); };
        recipe.describe = describe;
        return first(recipe);
    };
    const auto icc = [](const std::vector<std::uint8_t>& bytes) {
        return [&bytes](png_structp png, png_infop info) {
            png_set_iCCP(png, info, "icc", 0, bytes.data(), static_cast<png_uint_32>(bytes.size()));
        };
    };
    constexpr Color asAdobe{81, 181, 95}; // by the published matrices of Adobe RGB (1998) and sRGB
    EXPECT_TRUE(isNear(shown(icc(ColorProfile::adobeRGB()->icc())), asAdobe, 2));
    const auto asChunks = [](png_structp png, png_infop info) {
        png_set_gAMA(png, info, 256.0 / 563);
        png_set_cHRM(png, info, 0.3127, 0.3290, 0.64, 0.33, 0.21, 0.71, 0.15, 0.06);
    };
    EXPECT_TRUE(isNear(shown(asChunks), asAdobe, 2));
    const auto linear = [](png_structp png, png_infop info) { png_set_gAMA(png, info, 1.0); };
    EXPECT_TRUE(isNear(shown(linear), {181, 218, 168}, 2));
    const auto byName = [](png_structp png, png_infop info) {
        png_set_sRGB_gAMA_and_cHRM(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
    };
    EXPECT_TRUE(isNear(shown(byName), {120, 180, 100}, 0));

    const cmsCIExyY d50{0.3457, 0.3585, 1};
    auto* curve = cmsBuildGamma(nullptr, 1.0);
    auto* profile = cmsCreateGrayProfile(&d50, curve);
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    std::vector<std::uint8_t> grey(size);
    cmsSaveProfileToMem(profile, grey.data(), &size);
    cmsCloseProfile(profile);
    cmsFreeToneCurve(curve);
    EXPECT_TRUE(isNear(shown(icc(grey), PNG_COLOR_TYPE_GRAY), {181, 181, 181}, 2)) << "linear shades of grey";
}

TEST_F(PngTest, exifTurnsItWhereverItStands) {
    auto before = pngQuarters(PNG_COLOR_TYPE_RGB, 8);
    before.chunksBefore.emplace_back("eXIf", exifBlock(6));
    auto after = pngQuarters(PNG_COLOR_TYPE_RGB, 8);
    after.chunksAfter.emplace_back("eXIf", exifBlock(6));
    for (const auto& recipe : {before, after}) {
        const auto image = decode(makePng(recipe), 32);
        ASSERT_TRUE(image);
        EXPECT_EQ(image->size(), (PixelSize{24, 32}));
        EXPECT_TRUE(isNear(corners(*image)[0], blue, 0));
        EXPECT_TRUE(isNear(corners(*image)[1], red, 0));
    }
}

TEST_F(PngTest, sixteenBitsAreKeptForExport) {
    const auto full = [this](const PngRecipe& recipe, std::optional<int> maximum = {}) {
        const auto url = writeFile(folder, "a.png", makePng(recipe));
        return ImageDecoder::decodeOriginal(url, maximum, {}, Depth::full);
    };
    PngRecipe recipe{.size = {64, 32}, .depth = 16};
    recipe.paint = [](int x, int) {
        return PngRecipe::Pixel{static_cast<std::uint16_t>(x % 2 == 0 ? 1000 : 1003), 0x1234, 65535, 65535};
    };
    recipe.chunksBefore.emplace_back("eXIf", exifBlock(6));
    for (const bool isInterlaced : {false, true}) {
        recipe.isInterlaced = isInterlaced;
        const auto image = full(recipe);
        ASSERT_TRUE(image);
        EXPECT_EQ(image->format(), PixelFormat::bgrx16);
        EXPECT_EQ(image->size(), (PixelSize{32, 64}));
        const auto even = image->row16(62), odd = image->row16(63);
        EXPECT_EQ((std::vector<int>{even[8], even[9], even[10], even[11]}),
                  (std::vector<int>{65535, 0x1234, 1000, 65535}));
        EXPECT_EQ(odd[10], 1003);
        EXPECT_EQ(full(recipe, 32)->row16(5)[6], 1002) << "scaled with all bits";
        const auto display = ImageDecoder::prepareForDisplay(image, {});
        ASSERT_EQ(display->format(), PixelFormat::bgrx8);
        EXPECT_TRUE(isNear(colorAt(*display, 3, 3), {4, 18, 255}, 1));
    }
    recipe.paint = [](int, int) { return PngRecipe::Pixel{20000, 20000, 20000, 20000}; };
    recipe.colorType = PNG_COLOR_TYPE_RGBA;
    EXPECT_NEAR(full(recipe)->row16(0)[0], 65535 - 20000 + 20000.0 * 20000 / 65535, 1) << "on white";

    const auto eight = full(pngQuarters(PNG_COLOR_TYPE_RGB, 8));
    ASSERT_EQ(eight->format(), PixelFormat::bgrx8);
    const auto wide = widened(eight);
    EXPECT_EQ(wide->row16(0)[2], 65535);
    EXPECT_EQ(wide->row16(0)[1], 0);
    const auto adobe = converted(wide, ColorProfile::adobeRGB(), PixelFormat::bgrx16, {});
    EXPECT_NEAR(adobe->row16(0)[2], 0.8586 * 65535, 100) << "sRGB red in Adobe RGB (1998)";
    EXPECT_EQ(adobe->row16(0)[3], 65535);
}

TEST_F(PngTest, whatIsMissingOrDamagedDoesNoHarm) {
    for (const bool isInterlaced : {false, true}) {
        PngRecipe recipe{.size = {160, 160}, .isInterlaced = isInterlaced};
        recipe.paint = [](int x, int y) { return deep({200, (x * 7 + y * 13) % 256, (x * y) % 256}); };
        recipe.chunksBefore.emplace_back("eXIf", exifBlock(1));
        const auto whole = makePng(recipe);
        for (std::size_t at = 0; at < whole.size(); at += 211) {
            const Bytes cut{whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(at)};
            auto damaged = whole;
            damaged[at] ^= 0xFF;
            for (const auto& bytes : {cut, damaged}) {
                const auto image = decode(bytes, 100);
                if (image) {
                    EXPECT_LE(image->size().longestSide(), 100);
                }
            }
        }
        const auto length = static_cast<std::ptrdiff_t>(whole.size() * 3 / 4);
        const auto most = decode({whole.begin(), whole.begin() + length});
        ASSERT_TRUE(most) << "what there is";
        EXPECT_EQ(colorAt(*most, 0, 0).red, 200);
        EXPECT_EQ(colorAt(*most, 80, 20).red, 200);
        EXPECT_EQ(colorAt(*most, 159, 159).red, isInterlaced ? 200 : 128);
        EXPECT_EQ(most->data()[most->byteCount() - 1], 255) << "opaque, as everywhere";
    }
}

TEST_F(PngTest, forgeriesCostNothing) {
    auto bytes = makePng({});
    constexpr std::size_t name = 12, width = 16, height = 20, checksum = 29;
    for (const auto at : {width, height}) bytes[at + 1] = 0x02; // 131,072 more each way
    const auto sum = crc32(0, &bytes[name], checksum - name);
    for (unsigned i = 0; i < 4; ++i) bytes[checksum + i] = static_cast<std::uint8_t>(sum >> (24 - 8 * i));
    EXPECT_FALSE(decode(bytes, 256)) << "more pixels than its bytes can hold";
    EXPECT_TRUE(decode(makePng({.size = {100'000, 1}}), 100));

    // Megabytes of text in few bytes, and more chunks than are kept.
    PngRecipe bomb;
    const std::string text(16 << 20, 'x');
    bomb.describe = [&text](png_structp png, png_infop info) {
        png_text entry{};
        std::string key{"Comment"};
        std::string value{text};
        entry.compression = PNG_TEXT_COMPRESSION_zTXt;
        entry.key = key.data();
        entry.text = value.data();
        entry.text_length = value.size();
        for (int i = 0; i < 3; ++i) png_set_text(png, info, &entry, 1);
    };
    bomb.chunksBefore.assign(500, {"tEXt", Bytes(100, 'y')});
    EXPECT_TRUE(isNear(first(bomb), {128, 128, 128}, 0));
}

TEST_F(PngTest, aStopEndsInNothing) {
    std::stop_source stop;
    stop.request_stop();
    const auto url = writeFile(folder, "a.png", makePng({}));
    EXPECT_FALSE(ImageDecoder::decodeOriginal(url, {}, stop.get_token()));
    EXPECT_FALSE(ImageDecoder::embeddedThumbnail(url, {})) << "PNG has no thumbnails";
}

} // namespace
} // namespace kelvara
