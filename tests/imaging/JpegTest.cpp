#include "imaging/DecodingTest.h"

#include "imaging/DisplayColorSpace.h"

#include <algorithm>
#include <cmath>

namespace kelvara {
namespace {

class JpegTest : public testing::Test {
protected:
    BitmapPtr decode(const Bytes& bytes, std::optional<int> maximum = {}, const std::string& name = "a.jpg") {
        return ImageDecoder::decodeOriginal(writeFile(folder, name, bytes), maximum, {});
    }
    BitmapPtr quick(const Bytes& bytes, const std::string& name = "a.jpg") {
        return ImageDecoder::embeddedThumbnail(writeFile(folder, name, bytes), {});
    }
    static Color middle(const BitmapPtr& bitmap) {
        if (!bitmap) return {-1, -1, -1};
        return colorAt(*bitmap, bitmap->width() / 2, bitmap->height() / 2);
    }

    TemporaryFolder folder;
};

TEST_F(JpegTest, everyOrientationComesOutUpright) {
    // Where the stored corners red, green, blue, white go to, in the order of reading.
    const std::array<std::array<Color, 4>, 8> expected{{{red, green, blue, white},
                                                        {green, red, white, blue},
                                                        {white, blue, green, red},
                                                        {blue, white, red, green},
                                                        {red, blue, green, white},
                                                        {blue, red, white, green},
                                                        {white, green, blue, red},
                                                        {green, white, red, blue}}};
    auto recipe = quarters({96, 64});
    for (std::uint32_t orientation = 1; orientation <= 8; ++orientation) {
        recipe.exif = exifBlock(orientation);
        const auto bytes = makeJpeg(recipe);
        for (const auto maximum : {std::optional<int>{}, std::optional{48}, std::optional{40}}) {
            const auto image = decode(bytes, maximum);
            ASSERT_TRUE(image);
            const auto upright = maximum ? PixelSize{96, 64}.fittedTo(*maximum) : PixelSize{96, 64};
            EXPECT_EQ(image->size(), orientation >= 5 ? upright.transposed() : upright);
            const auto seen = corners(*image);
            for (std::size_t i = 0; i < seen.size(); ++i) {
                EXPECT_TRUE(isNear(seen[i], expected[orientation - 1][i])) << orientation << " corner " << i;
            }
        }
    }
}

TEST_F(JpegTest, scalesToTheRequestAndNeverBeyondTheFile) {
    const auto bytes = makeJpeg(quarters({300, 200}));
    EXPECT_EQ(decode(bytes, 256)->size(), (PixelSize{256, 171}));
    EXPECT_EQ(decode(bytes, 37)->size(), (PixelSize{37, 25}));
    EXPECT_EQ(decode(bytes, 1)->size(), (PixelSize{1, 1}));
    EXPECT_EQ(decode(bytes, 5000)->size(), (PixelSize{300, 200}));
    EXPECT_FALSE(decode(bytes, 0));
}

TEST_F(JpegTest, fineStripesBecomeAnEvenGrey) {
    JpegRecipe recipe{.size = {640, 480}};
    recipe.paint = [](int x, int) { return painted(x % 2 == 0 ? black : white); };
    const auto image = decode(makeJpeg(recipe), 200);
    for (int x = 0; x < image->width(); ++x)
        EXPECT_TRUE(isNear(colorAt(*image, x, 60), {128, 128, 128}, 26)) << x;
}

TEST_F(JpegTest, aThumbnailTakesOnlyTheFirstScansOfAProgressiveFile) {
    JpegRecipe recipe{.size = {768, 512}, .quality = 92};
    recipe.paint = [](int x, int y) { return painted({x / 3, (x * 7 + y * 3) % 256, y / 2}); };
    const auto baseline = makeJpeg(recipe);
    recipe.isProgressive = true;
    const auto progressive = makeJpeg(recipe);
    for (const int side : {90, 180}) {
        const auto expected = decode(baseline, side), seen = decode(progressive, side);
        ASSERT_TRUE(seen);
        for (int y = 0; y < seen->height(); ++y)
            for (int x = 0; x < seen->width(); ++x)
                ASSERT_TRUE(isNear(colorAt(*seen, x, y), colorAt(*expected, x, y))) << side << ": " << x;
        const auto cut =
            decode({progressive.begin(), progressive.end() - std::ptrdiff_t(progressive.size() / 4)}, side);
        ASSERT_TRUE(cut);
        EXPECT_TRUE(std::equal(seen->data(), seen->data() + seen->byteCount(), cut->data())) << side;
    }
}

TEST_F(JpegTest, readsGreyAndInks) {
    JpegRecipe grey{.components = 1};
    grey.paint = [](int, int) { return std::array<std::uint8_t, 4>{77}; };
    EXPECT_TRUE(isNear(middle(decode(makeJpeg(grey))), {77, 77, 77}));
    JpegRecipe inks{.components = 4};
    // Stored inverted, with the marker that says so: no cyan, all magenta, some yellow, no black.
    inks.paint = [](int, int) { return std::array<std::uint8_t, 4>{255, 0, 155, 255}; };
    auto bytes = makeJpeg(inks);
    EXPECT_TRUE(isNear(middle(decode(bytes)), {255, 0, 155}));
    EXPECT_TRUE(isNear(middle(decode(bytes, 20)), {255, 0, 155}));
    // The same bytes without the marker are inks as they are.
    const std::array<std::uint8_t, 5> adobe{'A', 'd', 'o', 'b', 'e'};
    *std::search(bytes.begin(), bytes.end(), adobe.begin(), adobe.end()) = 'X';
    EXPECT_TRUE(isNear(middle(decode(bytes)), {0, 0, 0}));
}

TEST_F(JpegTest, aTruncatedFileShowsWhatThereIs) {
    for (const bool isProgressive : {false, true}) {
        auto recipe = quarters({256, 256});
        recipe.isProgressive = isProgressive;
        const auto whole = makeJpeg(recipe);
        for (std::size_t length = 0; length < whole.size(); length += 97) {
            for (const auto maximum : {std::optional<int>{}, std::optional{100}}) {
                const auto image =
                    decode({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)}, maximum);
                if (image) {
                    EXPECT_EQ(image->size().longestSide(), maximum.value_or(256));
                }
            }
        }
        auto most = whole;
        most.resize(whole.size() * 3 / 4);
        const auto image = decode(most);
        ASSERT_TRUE(image);
        EXPECT_TRUE(isNear(colorAt(*image, 20, 20), red, 20));
    }
}

TEST_F(JpegTest, aSizeThatItsBytesCanNotHoldIsRefused) {
    auto bytes = makeJpeg({.size = {16, 16}});
    // Height and width stand five bytes into the frame header.
    const std::array<std::uint8_t, 2> frame{0xFF, 0xC0};
    const auto at = std::search(bytes.begin(), bytes.end(), frame.begin(), frame.end());
    ASSERT_NE(at, bytes.end());
    std::fill(at + 5, at + 9, std::uint8_t{0xFA});
    EXPECT_FALSE(decode(bytes));
    EXPECT_FALSE(decode(bytes, 256));
}

TEST_F(JpegTest, formatsAreRecognisedByContent) {
    const auto bytes = makeJpeg(quarters({64, 48}));
    EXPECT_TRUE(decode(bytes, {}, "a.heic"));
    EXPECT_FALSE(decode({}, {}, "empty.jpg"));
    EXPECT_FALSE(decode(Bytes(1000, 0x41), {}, "text.jpg"));
    EXPECT_FALSE(ImageDecoder::decodeOriginal(FileURL{"/nowhere/a.jpg"}, {}, {}));
    EXPECT_FALSE(ImageDecoder::decodeOriginal(FileURL{"/"}, {}, {}));
}

TEST_F(JpegTest, aStopEndsInNothing) {
    std::stop_source stop;
    stop.request_stop();
    const auto url = writeFile(folder, "a.jpg", makeJpeg(quarters({64, 48})));
    EXPECT_FALSE(ImageDecoder::decodeOriginal(url, {}, stop.get_token()));
    EXPECT_FALSE(ImageDecoder::embeddedThumbnail(url, stop.get_token()));
}

TEST_F(JpegTest, theStoredThumbnailLosesItsBars) {
    // A 3:2 photo with a 4:3 thumbnail, black above and below.
    JpegRecipe thumbnail{.size = {160, 120}};
    thumbnail.paint = [](int, int y) { return painted(y < 7 || y >= 113 ? black : red); };
    auto recipe = quarters({300, 200});
    recipe.exif = exifBlock(1, makeJpeg(thumbnail));
    auto image = quick(makeJpeg(recipe));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), (PixelSize{160, 106}));
    for (const auto color : corners(*image)) EXPECT_TRUE(isNear(color, red, 30));
    // The same photo held upright.
    recipe.exif = exifBlock(6, makeJpeg(thumbnail));
    image = quick(makeJpeg(recipe));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), (PixelSize{106, 160}));
    for (const auto color : corners(*image)) EXPECT_TRUE(isNear(color, red, 30));
    EXPECT_FALSE(quick(makeJpeg(recipe), "a.nef")) << "RAW files have none";
    EXPECT_FALSE(quick(makeJpeg(quarters({300, 200}))));
}

constexpr std::uint32_t fullHdThumbnail = 0x010002, vgaThumbnail = 0x010001, panorama = 0x020001,
                        otherView = 0x020003;

struct StoredPicture {
    std::uint32_t kind;
    Bytes jpeg;
};

/// The photo with pictures behind it, and the segment that tells of them.
Bytes withPictures(const Bytes& photo, const std::vector<StoredPicture>& pictures) {
    constexpr std::uint32_t longUndefined = 7;
    const auto segment = [&](std::uint32_t photoLength) {
        std::vector<std::uint32_t> words{0x20030000, photoLength, 0, 0};
        constexpr std::uint32_t dataStart = 10; // of the segment's TIFF data, where offsets count from
        auto at = photoLength - dataStart;
        for (const auto& [kind, jpeg] : pictures) {
            const auto length = static_cast<std::uint32_t>(jpeg.size());
            words.insert(words.end(), {kind, length, at, 0});
            at += length;
        }
        TiffMaker tiff;
        const auto entries = tiff.addLongs(words);
        const auto count = static_cast<std::uint32_t>(words.size() * 4);
        const auto data = tiff.finish(tiff.addDirectory({{0xB002, entries, count, longUndefined}}));
        const std::array<std::uint8_t, 8> start{0xFF, 0xE2, 0,   static_cast<std::uint8_t>(data.size() + 6),
                                                'M',  'P',  'F', 0};
        Bytes result(start.size() + data.size());
        std::ranges::copy(data, std::ranges::copy(start, result.begin()).out);
        return result;
    };
    auto result = photo;
    const auto length = static_cast<std::uint32_t>(photo.size() + segment(1000).size());
    const auto marker = segment(length);
    result.insert(result.begin() + 2, marker.begin(), marker.end());
    for (const auto& picture : pictures)
        result.insert(result.end(), picture.jpeg.begin(), picture.jpeg.end());
    return result;
}

Bytes plainJpeg(PixelSize size, Color color) {
    JpegRecipe recipe{.size = size};
    recipe.paint = [color](int, int) { return painted(color); };
    return makeJpeg(recipe);
}

TEST_F(JpegTest, theSmallestStoredPictureThatSatisfiesIsTaken) {
    JpegRecipe recipe{.size = {1200, 800}};
    recipe.paint = [](int, int) { return painted(white); };
    recipe.exif = exifBlock(6, plainJpeg({150, 100}, black));
    const auto photo = makeJpeg(recipe);
    const auto bytes = withPictures(
        photo, {{vgaThumbnail, plainJpeg({300, 200}, red)}, {fullHdThumbnail, plainJpeg({600, 402}, green)}});
    const auto shown = [&](const Bytes& file, int maximum) {
        const auto image = decode(file, maximum);
        EXPECT_EQ(image->height(), maximum) << "turned";
        return colorAt(*image, 20, 20);
    };
    EXPECT_TRUE(isNear(shown(bytes, 100), red)) << "never EXIF's";
    EXPECT_TRUE(isNear(shown(bytes, 300), red));
    EXPECT_TRUE(isNear(shown(bytes, 301), green)) << "its shape differs by a rounding only";
    EXPECT_TRUE(isNear(shown(bytes, 601), white));
    EXPECT_TRUE(isNear(middle(decode(bytes)), white)) << "the full size is never a preview";
    EXPECT_TRUE(isNear(middle(quick(bytes)), green));
    EXPECT_TRUE(isNear(shown(withPictures(photo, {{panorama, plainJpeg({300, 200}, red)},
                                                  {otherView, plainJpeg({600, 400}, red)}}),
                             200),
                       white));
    // What the entries point at has moved, as after an edit that kept them.
    auto moved = bytes;
    moved.insert(moved.begin() + static_cast<std::ptrdiff_t>(moved.size() / 2), 5, std::uint8_t{0});
    EXPECT_TRUE(isNear(shown(moved, 200), white, 20));
    for (std::size_t i = 2; i < 120; ++i) {
        auto damaged = bytes;
        damaged[i] ^= 0xFF;
        const auto image = decode(damaged, 256);
        EXPECT_TRUE(!image || image->size().longestSide() <= 256);
    }
}

TEST_F(JpegTest, barsOfAStoredPictureAreCutOffAndOthersDistrusted) {
    const auto photo = plainJpeg({1200, 800}, white);
    const auto framed = [&](PixelSize size, PixelSize inside, Color frame) {
        JpegRecipe recipe{.size = size};
        recipe.paint = [=](int x, int y) {
            const bool isBar = std::abs(2 * x + 1 - size.width) > inside.width ||
                               std::abs(2 * y + 1 - size.height) > inside.height;
            return painted(isBar ? frame : blue);
        };
        return withPictures(photo, {{fullHdThumbnail, makeJpeg(recipe)}});
    };
    struct Case {
        PixelSize size, inside;
    };
    for (const auto& [size, inside] : {Case{{640, 480}, {640, 426}}, Case{{640, 360}, {540, 360}}}) {
        const auto image = decode(framed(size, inside, black), 256);
        ASSERT_TRUE(image);
        EXPECT_NEAR(image->height(), 171, 1);
        for (const auto color : corners(*image)) EXPECT_TRUE(isNear(color, blue, 20));
        EXPECT_TRUE(isNear(middle(decode(framed(size, inside, red), 256)), white)) << "another picture";
        EXPECT_TRUE(isNear(middle(decode(framed(size, inside, black), inside.width + 1)), white));
    }
}

TEST(CropLetterboxTest, cutsInTheMiddleAndRoundsDown) {
    const auto preview = [](int width, int height) -> BitmapPtr {
        return Bitmap::create({width, height}, ColorProfile::sRGB());
    };
    const auto cropped = [&](BitmapPtr bitmap, PixelSize file, int orientation) {
        const auto result = ImageDecoder::cropLetterbox(std::move(bitmap), file, Orientation{orientation});
        return result ? result->size() : PixelSize{};
    };
    EXPECT_EQ(cropped(preview(160, 120), {6000, 4000}, 1), (PixelSize{160, 106}));
    EXPECT_EQ(cropped(preview(160, 120), {4000, 4000}, 1), (PixelSize{120, 120}));
    EXPECT_EQ(cropped(preview(120, 160), {6000, 4000}, 8), (PixelSize{106, 160}));
    EXPECT_EQ(cropped(preview(120, 160), {4000, 6000}, 2), (PixelSize{106, 160}));
    EXPECT_EQ(cropped(preview(10, 10), {60000, 1}, 1), (PixelSize{})) << "nothing would be left";
    EXPECT_EQ(cropped(preview(10, 10), {0, 10}, 1), (PixelSize{}));
    EXPECT_FALSE(ImageDecoder::cropLetterbox(preview(10, 10), std::nullopt, Orientation{}));
    EXPECT_FALSE(ImageDecoder::cropLetterbox(nullptr, PixelSize{3, 2}, Orientation{}));
}

/// Adobe RGB (1998) to sRGB by the published matrices.
Color adobeToSRGB(Color color) {
    const auto linear = [](int value) { return std::pow(value / 255.0, 563.0 / 256); };
    const double r = linear(color.red), g = linear(color.green), b = linear(color.blue);
    const double x = 0.5767309 * r + 0.1855540 * g + 0.1881852 * b;
    const double y = 0.2973769 * r + 0.6273491 * g + 0.0752741 * b;
    const double z = 0.0270343 * r + 0.0706872 * g + 0.9911085 * b;
    const auto encoded = [](double value) {
        value = std::clamp(value, 0.0, 1.0);
        const double result = value <= 0.0031308 ? 12.92 * value : 1.055 * std::pow(value, 1 / 2.4) - 0.055;
        return static_cast<int>(std::lround(result * 255));
    };
    return {encoded(3.2404542 * x - 1.5371385 * y - 0.4985314 * z),
            encoded(-0.9692660 * x + 1.8760108 * y + 0.0415560 * z),
            encoded(0.0556434 * x - 0.2040259 * y + 1.0572252 * z)};
}

class JpegColorTest : public JpegTest {
protected:
    ~JpegColorTest() override { DisplayColorSpace::update(ColorProfile::sRGB()); }

    static JpegRecipe patch() {
        JpegRecipe recipe;
        recipe.paint = [](int, int) { return painted(stored); };
        return recipe;
    }
    Color shown(const JpegRecipe& recipe) {
        return middle(ImageDecoder::prepareForDisplay(decode(makeJpeg(recipe)), {}));
    }

    static constexpr Color stored{120, 180, 100};
};

TEST_F(JpegColorTest, profilesAreConvertedToTheScreens) {
    auto recipe = patch();
    EXPECT_TRUE(isNear(shown(recipe), stored, 3));
    recipe.icc = ColorProfile::adobeRGB()->icc();
    EXPECT_TRUE(isNear(shown(recipe), adobeToSRGB(stored), 3));
    EXPECT_TRUE(DisplayColorSpace::update(ColorProfile::adobeRGB()));
    EXPECT_FALSE(DisplayColorSpace::update(ColorProfile::adobeRGB()));
    EXPECT_TRUE(isNear(shown(recipe), stored, 3)) << "already the screen's";
}

TEST_F(JpegColorTest, exifCanNameAdobeRGB) {
    TiffMaker tiff;
    const auto interoperability = tiff.addDirectory({{0x0001, 0x00333052, 4, 2}}); // "R03"
    const auto exif =
        tiff.addDirectory({{0xA001, 0xFFFF, 1, TiffMaker::shortType}, {0xA005, interoperability}});
    auto recipe = patch();
    recipe.exif = tiff.finish(tiff.addDirectory({{exifTag, exif}}));
    EXPECT_TRUE(isNear(shown(recipe), adobeToSRGB(stored), 3));
}

TEST_F(JpegColorTest, variantsOfSRGBAreTheSame) {
    EXPECT_EQ(ColorProfile::fromIcc(ColorProfile::sRGB()->icc()), ColorProfile::sRGB());
    EXPECT_NE(ColorProfile::fromIcc(ColorProfile::displayP3()->icc()), ColorProfile::sRGB());
    EXPECT_EQ(*ColorProfile::fromIcc(ColorProfile::displayP3()->icc()), *ColorProfile::displayP3());
    EXPECT_FALSE(ColorProfile::fromIcc(Bytes(500, 0)));
    EXPECT_FALSE(DisplayColorSpace::update(nullptr));
}

} // namespace
} // namespace kelvara
