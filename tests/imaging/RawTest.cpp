#include "imaging/DecodingTest.h"

#include <algorithm>
#include <thread>

namespace kelvara {
namespace {

constexpr std::uint16_t widthTag = 0x0100, lengthTag = 0x0101, compressionTag = 0x0103,
                        interpretationTag = 0x0106, stripOffsetTag = 0x0111, stripLengthTag = 0x0117,
                        subDirectoriesTag = 0x014A;
constexpr std::uint32_t colorFilterArray = 32803, jpegCompression = 7;

/// A RAW file of the TIFF family: its sensor data is not there, only what describes it.
struct RawRecipe {
    PixelSize sensor{6000, 4000};
    std::uint32_t orientation = 1;
    Bytes inFirst{};  ///< Preview in the first directory's strip.
    Bytes inSub{};    ///< Preview by offset and length in a sub-directory.
    Bytes inSecond{}; ///< Preview in the chained directory.
};

Bytes makeRaw(const RawRecipe& recipe) {
    TiffMaker tiff;
    const auto size = [](const Bytes& bytes) { return static_cast<std::uint32_t>(bytes.size()); };
    const auto sensor = tiff.addDirectory({{widthTag, static_cast<std::uint32_t>(recipe.sensor.width)},
                                           {lengthTag, static_cast<std::uint32_t>(recipe.sensor.height)},
                                           {interpretationTag, colorFilterArray, 1, TiffMaker::shortType}});
    std::vector<std::uint32_t> subDirectories{sensor};
    if (!recipe.inSub.empty()) {
        const auto at = tiff.add(recipe.inSub);
        subDirectories.push_back(
            tiff.addDirectory({{jpegOffsetTag, at}, {jpegLengthTag, size(recipe.inSub)}}));
    }
    std::uint32_t second = 0;
    if (!recipe.inSecond.empty()) {
        const auto at = tiff.add(recipe.inSecond);
        second = tiff.addDirectory({{jpegOffsetTag, at}, {jpegLengthTag, size(recipe.inSecond)}});
    }
    std::vector<TiffMaker::Entry> first{{orientationTag, recipe.orientation, 1, TiffMaker::shortType}};
    if (!recipe.inFirst.empty()) {
        first.push_back({compressionTag, jpegCompression, 1, TiffMaker::shortType});
        first.push_back({stripOffsetTag, tiff.add(recipe.inFirst)});
        first.push_back({stripLengthTag, size(recipe.inFirst)});
    }
    const auto isList = subDirectories.size() > 1;
    first.push_back({subDirectoriesTag, isList ? tiff.addLongs(subDirectories) : sensor,
                     static_cast<std::uint32_t>(subDirectories.size())});
    return tiff.finish(tiff.addDirectory(first, second));
}

Bytes plain(PixelSize size, Color color) {
    JpegRecipe recipe{.size = size};
    recipe.paint = [color](int, int) { return painted(color); };
    return makeJpeg(recipe);
}

class RawTest : public testing::Test {
protected:
    BitmapPtr decode(const Bytes& bytes, std::optional<int> maximum = {}) {
        return ImageDecoder::decodeOriginal(writeFile(folder, "a.nef", bytes), maximum, {});
    }

    TemporaryFolder folder;
};

TEST_F(RawTest, takesTheSmallestPreviewThatSatisfies) {
    const auto bytes = makeRaw({.sensor = {1200, 800},
                                .inFirst = plain({160, 120}, red),
                                .inSub = plain({1200, 800}, green),
                                .inSecond = plain({600, 400}, blue)});
    const auto small = decode(bytes, 128);
    EXPECT_EQ(small->size(), (PixelSize{128, 96}));
    EXPECT_TRUE(isNear(colorAt(*small, 5, 5), red));
    const auto middle = decode(bytes, 512);
    EXPECT_EQ(middle->size(), (PixelSize{512, 341}));
    EXPECT_TRUE(isNear(colorAt(*middle, 5, 5), blue));
    const auto full = decode(bytes);
    EXPECT_EQ(full->size(), (PixelSize{1200, 800}));
    EXPECT_TRUE(isNear(colorAt(*full, 5, 5), green));
}

TEST_F(RawTest, previewsAreTurnedOnceByTheFilesOwnOrientation) {
    auto preview = quarters({96, 64});
    preview.exif = exifBlock(6); // cameras repeat it inside
    const auto image = decode(makeRaw({.sensor = {96, 64}, .orientation = 6, .inSub = makeJpeg(preview)}));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), (PixelSize{64, 96}));
    EXPECT_TRUE(isNear(corners(*image)[0], blue));
    EXPECT_TRUE(isNear(corners(*image)[1], red));
}

TEST_F(RawTest, hostileDirectoriesEndInNothing) {
    TiffMaker loop;
    EXPECT_FALSE(decode(loop.finish(loop.addDirectory({}, loop.position()))));
    TiffMaker nested;
    const auto at = nested.position();
    EXPECT_FALSE(decode(nested.finish(nested.addDirectory({{subDirectoriesTag, at}, {exifTag, at}}, at))));
    TiffMaker beyond;
    EXPECT_FALSE(decode(
        beyond.finish(beyond.addDirectory({{jpegOffsetTag, 0xFFFFFFF0}, {jpegLengthTag, 0xFFFFFFFF}}))));
    TiffMaker counts;
    EXPECT_FALSE(decode(counts.finish(counts.addDirectory({{subDirectoriesTag, 8, 0xFFFFFFFF}}))));
    EXPECT_FALSE(decode(TiffMaker{}.finish(0xFFFFFFF0)));
    EXPECT_FALSE(decode({'I', 'I', 42, 0}));
}

TEST_F(RawTest, theLargestPreviewStandsInWhenTheImageCannotBeDeveloped) {
    const auto image = decode(makeRaw({.inSub = plain({1000, 600}, red)}));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), (PixelSize{1000, 600}));
}

/// Boxes of a CR3 file, most significant byte first.
Bytes number(std::uint64_t value, int count) {
    Bytes result;
    for (int i = count - 1; i >= 0; --i)
        result.push_back(static_cast<std::uint8_t>(i < 8 ? value >> (8 * i) : 0));
    return result;
}

Bytes joined(const std::vector<Bytes>& parts) {
    Bytes result;
    for (const auto& part : parts) result.insert(result.end(), part.begin(), part.end());
    return result;
}

Bytes box(std::string_view type, const std::vector<Bytes>& parts) {
    const auto content = joined(parts);
    return joined({number(content.size() + 8, 4), Bytes(type.begin(), type.end()), content});
}

Bytes directory(const std::vector<TiffMaker::Entry>& entries) {
    TiffMaker tiff;
    return tiff.finish(tiff.addDirectory(entries));
}

struct Cr3Recipe {
    std::uint32_t orientation = 1;
    std::uint32_t colorSpace = 1; ///< The maker's number.
    bool hasLongBoxes = false;    ///< Lengths and offsets of eight bytes.
    Bytes thumbnail{}, preview{}, full{};
};

Bytes makeCr3(const Cr3Recipe& recipe) {
    const Bytes metadata{0x85, 0xC0, 0xB6, 0x87, 0x82, 0x0F, 0x11, 0xE0,
                         0x81, 0x11, 0xF4, 0xCE, 0x46, 0x2B, 0x6A, 0x48};
    const Bytes previews{0xEA, 0xF4, 0x2B, 0x5E, 0x1C, 0x98, 0x4B, 0x88,
                         0xB9, 0xFB, 0xB7, 0xDC, 0x40, 0x6E, 0x4D, 0x16};
    const auto s = TiffMaker::shortType;
    const auto build = [&](std::uint64_t dataAt) {
        const auto track = [&](std::uint64_t offset, std::size_t length) {
            const auto place = recipe.hasLongBoxes
                                   ? box("co64", {number(0, 4), number(1, 4), number(offset, 8)})
                                   : box("stco", {number(0, 4), number(1, 4), number(offset, 4)});
            const auto sizes = recipe.hasLongBoxes
                                   ? box("stsz", {number(0, 4), number(length, 4), number(1, 4)})
                                   : box("stsz", {number(0, 8), number(1, 4), number(length, 4)});
            return box("trak", {box("mdia", {box("minf", {box("stbl", {sizes, place})})})});
        };
        return joined(
            {box("ftyp", {Bytes{'c', 'r', 'x', ' '}, number(1, 4)}),
             box("moov", {box("uuid", {metadata,
                                       box("CMT1", {directory({{orientationTag, recipe.orientation, 1, s}})}),
                                       box("CMT2", {directory({{0xA002, 1200}, {0xA003, 800}})}),
                                       box("CMT3", {directory({{0x00B4, recipe.colorSpace, 1, s}})}),
                                       box("THMB", {Bytes(16), recipe.thumbnail})}),
                          track(dataAt, recipe.full.size()), track(dataAt + 1, 5)}),
             box("uuid", {previews, number(1, 8), box("PRVW", {Bytes(16), recipe.preview})})});
    };
    const std::size_t header = recipe.hasLongBoxes ? 16 : 8;
    const auto start = build(build(0).size() + header);
    const auto length = recipe.full.size() + header;
    const Bytes name{'m', 'd', 'a', 't'};
    const auto data = recipe.hasLongBoxes ? joined({number(1, 4), name, number(length, 8), recipe.full})
                                          : joined({number(length, 4), name, recipe.full});
    return joined({start, data});
}

TEST_F(RawTest, previewsOfCr3AreFoundInItsBoxes) {
    for (const bool hasLongBoxes : {false, true}) {
        const auto bytes = makeCr3({.orientation = 8,
                                    .hasLongBoxes = hasLongBoxes,
                                    .thumbnail = plain({160, 120}, red),
                                    .preview = plain({600, 400}, blue),
                                    .full = plain({1200, 800}, green)});
        struct Case {
            std::optional<int> request;
            PixelSize size;
            Color color;
        };
        for (const auto& [request, size, color] :
             {Case{128, {96, 128}, red}, Case{512, {341, 512}, blue}, Case{{}, {800, 1200}, green}}) {
            const auto image = decode(bytes, request);
            ASSERT_TRUE(image);
            EXPECT_EQ(image->size(), size);
            EXPECT_TRUE(isNear(colorAt(*image, 9, 9), color));
        }
        for (std::size_t at = 0; at < bytes.size(); at += at < 900 ? 11 : 997) {
            auto damaged = bytes;
            damaged[at] ^= 0xFF;
            const Bytes cut{bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(at)};
            for (const auto& broken : {damaged, cut}) {
                const auto image = decode(broken, 100);
                EXPECT_TRUE(!image || image->size().longestSide() <= 100);
            }
        }
    }
    const auto adobe = decode(makeCr3({.colorSpace = 2, .full = plain({1200, 800}, green)}));
    ASSERT_TRUE(adobe);
    EXPECT_EQ(*adobe->profile(), *ColorProfile::adobeRGB());
}

/// A DNG of a plain mosaic that can be developed, with a preview unless empty.
Bytes makeDng(PixelSize size, const Bytes& preview = {}) {
    TiffMaker tiff;
    std::uint32_t second = 0;
    if (!preview.empty()) {
        const auto at = tiff.add(preview);
        second = tiff.addDirectory(
            {{jpegOffsetTag, at}, {jpegLengthTag, static_cast<std::uint32_t>(preview.size())}});
    }
    const auto w = static_cast<std::uint32_t>(size.width), h = static_cast<std::uint32_t>(size.height);
    Bytes samples;
    for (std::uint32_t i = 0; i < w * h; ++i) {
        samples.push_back(0x00);
        samples.push_back(0x40);
    }
    const auto data = tiff.add(samples);
    const auto matrix = tiff.addLongs({10000, 10000, 0, 10000, 0, 10000, 0, 10000, 10000, 10000, 0, 10000, 0,
                                       10000, 0, 10000, 10000, 10000});
    const auto neutral = tiff.addLongs({1, 1, 1, 1, 1, 1});
    const auto model = tiff.add({'M', 'a', 'd', 'e', ' ', 'u', 'p', 0});
    constexpr std::uint16_t s = TiffMaker::shortType, rational = 5, signedRational = 10;
    return tiff.finish(tiff.addDirectory({{0x00FE, 0},
                                          {widthTag, w},
                                          {lengthTag, h},
                                          {0x0102, 16, 1, s},
                                          {compressionTag, 1, 1, s},
                                          {interpretationTag, colorFilterArray, 1, s},
                                          {0x010F, model, 8, 2},
                                          {0x0110, model, 8, 2},
                                          {stripOffsetTag, data},
                                          {orientationTag, 6, 1, s},
                                          {0x0115, 1, 1, s},
                                          {0x0116, h},
                                          {stripLengthTag, static_cast<std::uint32_t>(samples.size())},
                                          {0x828D, 0x00020002, 2, s},
                                          {0x828E, 0x02010100, 4, 1},
                                          {0xC612, 0x00000401, 4, 1},
                                          {0xC614, model, 8, 2},
                                          {0xC61D, 65535},
                                          {0xC621, matrix, 9, signedRational},
                                          {0xC628, neutral, 3, rational},
                                          {0xC65A, 21, 1, s}},
                                         second));
}

TEST_F(RawTest, aFileWithoutPreviewsIsDeveloped) {
    const auto bytes = makeDng({256, 192});
    const auto full = decode(bytes);
    ASSERT_TRUE(full);
    EXPECT_EQ(full->size(), (PixelSize{192, 256})) << "and turned";
    const auto half = decode(bytes, 100);
    ASSERT_TRUE(half);
    EXPECT_EQ(half->size(), (PixelSize{75, 100}));
    const auto url = writeFile(folder, "b.dng", bytes);
    const auto deep = ImageDecoder::decodeOriginal(url, 100, {}, Depth::full);
    ASSERT_TRUE(deep);
    EXPECT_EQ(deep->format(), PixelFormat::bgrx16);
    for (const int y : {10, 50, 90})
        EXPECT_NEAR(deep->row16(y)[160] / 257, half->row(y)[160], 1) << "the same picture";
    std::stop_source stop;
    stop.request_stop();
    EXPECT_FALSE(ImageDecoder::decodeOriginal(url, {}, stop.get_token()));
}

TEST_F(RawTest, onlyPreviewsAreExported) {
    const auto exported = [&](const Bytes& bytes, std::optional<int> maximum = {}) {
        return ImageDecoder::decodeForExport(writeFile(folder, "a.NEF", bytes), maximum, {}, Depth::full);
    };
    EXPECT_FALSE(exported(makeDng({256, 192})));
    const auto preview = exported(makeDng({256, 192}, plain({100, 75}, red)));
    ASSERT_TRUE(preview);
    EXPECT_EQ(preview->size(), (PixelSize{75, 100})) << "turned";
    EXPECT_EQ(exported(makeDng({256, 192}, plain({100, 75}, red)), 40)->size(), (PixelSize{30, 40}));
    auto recipe = quarters({600, 400});
    recipe.exif = exifBlock(1, plain({160, 120}, black));
    EXPECT_EQ(exported(makeJpeg(recipe))->size(), (PixelSize{600, 400})) << "whatever its name says";
    const auto film = writeFile(folder, "a.MOV", makeJpeg(recipe));
    EXPECT_FALSE(ImageDecoder::decodeForExport(film, {}, {}, Depth::eight));
}

TEST_F(RawTest, aStopAtAnyMomentEndsTheDevelopment) {
    const auto url = writeFile(folder, "a.dng", makeDng({256, 192}));
    for (int i = 0; i < 20; ++i) {
        std::stop_source stop;
        BitmapPtr image;
        std::jthread decoding{[&] { image = ImageDecoder::decodeOriginal(url, {}, stop.get_token()); }};
        for (int yields = 0; yields < i * i; ++yields) std::this_thread::yield();
        stop.request_stop();
        decoding.join();
        EXPECT_TRUE(!image || image->size() == (PixelSize{192, 256}));
    }
}

TEST_F(RawTest, missingSensorDataIsNotDeveloped) {
    // The preview lies before the sensor data, the directories behind it; so the data's length is forged.
    auto bytes = makeDng({256, 192}, plain({100, 75}, red));
    const std::array<std::uint8_t, 8> entry{stripLengthTag & 0xFF, stripLengthTag >> 8, 4, 0, 1, 0, 0, 0};
    const auto found = std::search(bytes.begin(), bytes.end(), entry.begin(), entry.end());
    ASSERT_NE(found, bytes.end());
    found[11] = 1; // 16 MB more than there are
    const auto image = decode(bytes);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), (PixelSize{75, 100})) << "the preview";
    bytes = makeDng({256, 192});
    std::search(bytes.begin(), bytes.end(), entry.begin(), entry.end())[11] = 1;
    EXPECT_FALSE(decode(bytes));

    const auto whole = makeCr3({.thumbnail = plain({160, 120}, red), .full = plain({1200, 800}, green)});
    const auto cut = decode({whole.begin(), whole.end() - 500}, 1000);
    ASSERT_TRUE(cut) << "previews are decoded as far as they go";
    EXPECT_TRUE(isNear(colorAt(*cut, 9, 9), green));
}

TEST_F(RawTest, aRawNameOnAJpegDoesNotMatter) {
    auto recipe = quarters({600, 400});
    recipe.exif = exifBlock(6, plain({160, 120}, black));
    for (const auto maximum : {std::optional<int>{}, std::optional{300}}) {
        const auto image = decode(makeJpeg(recipe), maximum);
        ASSERT_TRUE(image);
        EXPECT_EQ(image->height(), maximum.value_or(600));
        EXPECT_TRUE(isNear(corners(*image)[0], blue, 20));
    }
}

TEST_F(RawTest, aPreviewOfNineTenthsIsPreferredToDevelopment) {
    const auto side = [&](int preview, std::optional<int> request) {
        const auto image = decode(makeDng({2000, 64}, plain({preview, 52}, red)), request);
        return image ? image->size().longestSide() : 0;
    };
    EXPECT_EQ(side(1616, 1792), 1616) << "1612.8 would do";
    EXPECT_EQ(side(1600, 1792), 1792) << "developed";
    EXPECT_EQ(side(1616, 1000), 1000);
    EXPECT_EQ(side(1790, {}), 2000);
    EXPECT_EQ(side(1800, {}), 1800);
    EXPECT_EQ(side(1800, 9000), 1800) << "no more is asked for than the file has";
}

/// A layered picture of another kind whose only readable part is the JPEG thumbnail among its resources.
Bytes makeLayeredPicture(const Bytes& thumbnail) {
    Bytes result;
    const auto text = [&](std::string_view characters) {
        result.insert(result.end(), characters.begin(), characters.end());
    };
    const auto number = [&](std::size_t value, int bytes) {
        for (int shift = (bytes - 1) * 8; shift >= 0; shift -= 8)
            result.push_back(static_cast<std::uint8_t>(value >> shift));
    };
    constexpr std::size_t fields = 28;
    text("8BPS");
    for (const auto& [value, bytes] :
         {std::pair{1, 2}, {0, 4}, {0, 2}, {3, 2}, {400, 4}, {600, 4}, {8, 2}, {3, 2}})
        number(static_cast<std::size_t>(value), bytes);
    number(0, 4); // colour table
    number(12 + fields + thumbnail.size(), 4);
    text("8BIM");
    number(0x040C, 2);
    number(0, 2); // no name
    number(fields + thumbnail.size(), 4);
    for (const auto& [value, bytes] : {std::pair{1, 4}, {150, 4}, {100, 4}, {452, 4}, {45200, 4}})
        number(static_cast<std::size_t>(value), bytes);
    number(thumbnail.size(), 4);
    number(24, 2);
    number(1, 2);
    result.insert(result.end(), thumbnail.begin(), thumbnail.end());
    number(0, 4); // layers
    return result;
}

TEST_F(RawTest, aContainerThatOnlyTheMetadataLibraryKnowsShowsItsPreview) {
    const auto image = decode(makeLayeredPicture(plain({150, 100}, green)));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), (PixelSize{150, 100}));
    EXPECT_TRUE(isNear(colorAt(*image, 75, 50), green));
}

TEST_F(RawTest, filesAreDecodedOnManyThreadsAtOnce) {
    auto adobe = quarters({200, 100});
    adobe.icc = ColorProfile::adobeRGB()->icc();
    const std::vector<FileURL> urls{writeFile(folder, "a.dng", makeDng({256, 192})),
                                    writeFile(folder, "b.jpg", makeJpeg(adobe)),
                                    writeFile(folder, "c.nef", makeRaw({.inSub = plain({400, 300}, green)})),
                                    writeFile(folder, "d.nef", Bytes(300, 'x'))};
    const auto decodeOne = [&urls](std::size_t i) {
        return ImageDecoder::prepareForDisplay(ImageDecoder::decodeOriginal(urls[i % urls.size()], 128, {}),
                                               {});
    };
    std::vector<BitmapPtr> images(24);
    {
        std::vector<std::jthread> threads;
        for (std::size_t first = 0; first < 3; ++first) {
            threads.emplace_back([&, first] {
                for (std::size_t i = first; i < images.size(); i += 3) images[i] = decodeOne(i);
            });
        }
    }
    for (std::size_t i = 0; i < images.size(); ++i) {
        const auto expected = decodeOne(i);
        ASSERT_EQ(images[i] == nullptr, expected == nullptr);
        EXPECT_EQ(expected == nullptr, i % urls.size() == 3);
        if (!expected) continue;
        EXPECT_TRUE(
            std::equal(expected->data(), expected->data() + expected->byteCount(), images[i]->data()));
    }
}

} // namespace
} // namespace kelvara
