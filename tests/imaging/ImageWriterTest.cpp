#include "imaging/ImageWriter.h"

#include "imaging/DecodingTest.h"
#include "imaging/metadata/LoadedMetadata.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace kelvara {
namespace {

using Format = ExportSettings::Format;

ExportSettings settingsOf(Format format, bool uses16Bit = false, bool keepsLocation = true) {
    ExportSettings settings;
    settings.format = format;
    settings.uses16Bit = uses16Bit;
    settings.keepsLocation = keepsLocation;
    return settings;
}

/// Each channel as `paint` gives it, in 16 bits.
BitmapPtr deepBitmap(PixelSize size, const std::function<unsigned(int x, int y)>& paint) {
    auto bitmap = Bitmap::create(size, ColorProfile::displayP3(), PixelFormat::bgrx16);
    for (int y = 0; y < size.height; ++y) {
        for (int i = 0; i < size.width * 4; ++i)
            bitmap->row16(y)[static_cast<std::size_t>(i)] = static_cast<std::uint16_t>(paint(i / 4, y));
    }
    return bitmap;
}

/// A photo that says: by this maker, turned on its side, stored in one strip, rated four stars, taken at a
/// place in EXIF and XMP, with a maker's note whose one value, an owner, lies within it or elsewhere.
Bytes describedPhoto(bool hasOwnerInNote) {
    constexpr std::uint16_t ascii = 2, shortType = 3, rational = 5, undefined = 7;
    constexpr std::string_view owner{"Somebody with a name\0", 21}, maker{"Canon\0", 6};
    const auto bytes = [](std::string_view text) { return Bytes{text.begin(), text.end()}; };
    TiffMaker tiff;
    const auto makerAt = tiff.add(bytes(maker));
    const auto placeAt = tiff.addLongs({52, 1, 30, 1, 58321, 1000});
    constexpr std::uint32_t noteLength = 2 + 12 + 4;
    const auto ownerLength = static_cast<std::uint32_t>(owner.size());
    const auto elsewhere = tiff.add(bytes(owner));
    const auto noteAt = tiff.addDirectory(
        {{0x0009, hasOwnerInNote ? tiff.position() + noteLength : elsewhere, ownerLength, ascii}});
    if (hasOwnerInNote) tiff.add(bytes(owner));
    const auto noteSize = tiff.position() - noteAt;
    const auto gps = tiff.addDirectory({{0x0001, 'N', 2, ascii}, {0x0002, placeAt, 3, rational}});
    const auto exif = tiff.addDirectory(
        {{0x8827, 400, 1, shortType}, {0x927C, noteAt, noteSize, undefined}, {0xA002, 6000}, {0xA003, 4000}});
    const auto thumbnail = makeJpeg({.size = {16, 12}});
    const auto thumbnailAt = tiff.add(thumbnail);
    const auto second = tiff.addDirectory(
        {{jpegOffsetTag, thumbnailAt}, {jpegLengthTag, static_cast<std::uint32_t>(thumbnail.size())}});
    const auto block = tiff.finish(tiff.addDirectory({{0x010F, makerAt, 6, ascii},
                                                      {0x0111, 4711},
                                                      {orientationTag, 6, 1, shortType},
                                                      {0x4746, 4, 1, shortType},
                                                      {exifTag, exif},
                                                      {0x8825, gps}},
                                                     second));
    auto jpeg = makeJpeg({.size = {60, 40}, .exif = block});
    const std::string packet =
        "http://ns.adobe.com/xap/1.0/" + std::string(1, '\0') +
        "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
        "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
        "<rdf:Description rdf:about='' xmlns:xmp='http://ns.adobe.com/xap/1.0/' xmp:Rating='5' "
        "xmlns:exif='http://ns.adobe.com/exif/1.0/' exif:GPSLatitude='52,30.97201N' "
        "xmlns:dc='http://purl.org/dc/elements/1.1/'>"
        "<dc:title><rdf:Alt><rdf:li xml:lang='x-default'>Harbour</rdf:li></rdf:Alt></dc:title>"
        "</rdf:Description></rdf:RDF></x:xmpmeta>";
    const auto length = packet.size() + 2;
    Bytes segment{0xFF, 0xE1, static_cast<std::uint8_t>(length >> 8), static_cast<std::uint8_t>(length)};
    segment.insert(segment.end(), packet.begin(), packet.end());
    jpeg.insert(jpeg.begin() + 2, segment.begin(), segment.end());
    return jpeg;
}

class ImageWriterTest : public testing::Test {
protected:
    /// What is written and read back.
    FileURL written(const ImageWriter::Picture& picture, const ExportSettings& settings) {
        const auto bytes = ImageWriter::encode(picture, settings, {});
        EXPECT_TRUE(bytes);
        return folder.write("written", bytes.value_or(std::string{}));
    }
    BitmapPtr quartersIn(PixelSize size) {
        const auto url = writeFile(folder, "quarters.jpg", makeJpeg([&] {
                                       auto recipe = quarters(size);
                                       recipe.icc = ColorProfile::displayP3()->icc();
                                       return recipe;
                                   }()));
        return ImageDecoder::decodeOriginal(url, {}, {});
    }

    const TemporaryFolder folder;
};

TEST_F(ImageWriterTest, everyFormatShowsThePictureInItsColours) {
    const auto image = quartersIn({151, 101});
    ASSERT_TRUE(image);
    const auto wide = widened(image);
    for (const auto format : ExportSettings::formats) {
        for (const bool isDeep : {false, true}) {
            for (const auto& given : {image, wide}) {
                const auto url = written({given, folder.at("none"), {}}, settingsOf(format, isDeep));
                const auto seen = ImageDecoder::decodeOriginal(url, {}, {});
                ASSERT_TRUE(seen) << ExportSettings::rawValue(format) << isDeep;
                EXPECT_EQ(seen->size(), image->size());
                EXPECT_EQ(*seen->profile(), *ColorProfile::displayP3());
                const auto expected = corners(*image), found = corners(*seen);
                for (std::size_t i = 0; i < 4; ++i) EXPECT_TRUE(isNear(found[i], expected[i], 8));
            }
        }
    }
    auto coarse = settingsOf(Format::jpeg);
    coarse.quality = ExportSettings::lowestQuality;
    const ImageWriter::Picture picture{image, folder.at("none"), {}};
    EXPECT_LT(ImageWriter::encode(picture, coarse, {})->size(),
              ImageWriter::encode(picture, settingsOf(Format::jpeg), {})->size());
    std::stop_source stop;
    stop.request_stop();
    for (const auto format : ExportSettings::formats)
        EXPECT_FALSE(ImageWriter::encode(picture, settingsOf(format), stop.get_token()));
}

TEST_F(ImageWriterTest, gradientsKeepMoreThanEightBits) {
    const auto gradient =
        deepBitmap({1024, 16}, [](int x, int) { return 20'000U + static_cast<unsigned>(x); });
    const auto distinct = [&](Format format) {
        const auto url = written({gradient, folder.at("none"), {}}, settingsOf(format, true));
        const auto seen = ImageDecoder::decodeOriginal(url, {}, {}, Depth::full);
        EXPECT_TRUE(seen && seen->format() == PixelFormat::bgrx16);
        const auto row = seen->row16(8);
        return std::set(row.begin(), row.end()).size() - 1; // without the fourth numbers
    };
    EXPECT_EQ(distinct(Format::png), 1024U);
    EXPECT_GE(distinct(Format::heif), 12U) << "eight bits have five levels there";

    // A grey between two levels of eight bits becomes a mixture of both, always the same.
    const auto grey = deepBitmap({64, 64}, [](int, int) { return 100U * 257 + 64; });
    auto settings = settingsOf(Format::jpeg, true);
    settings.quality = 1;
    const ImageWriter::Picture picture{grey, folder.at("none"), {}};
    const auto seen = ImageDecoder::decodeOriginal(written(picture, settings), {}, {});
    double sum = 0;
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x) sum += colorAt(*seen, x, y).green;
    EXPECT_NEAR(sum / (64 * 64), 100.25, 0.06);
    EXPECT_EQ(ImageWriter::encode(picture, settings, {}), ImageWriter::encode(picture, settings, {}));
}

TEST_F(ImageWriterTest, whatHoldsForTheNewFileIsCarriedAndNothingElse) {
    const auto source = writeFile(folder, "source.jpg", describedPhoto(true));
    const auto scattered = writeFile(folder, "scattered.jpg", describedPhoto(false));
    const auto image = quartersIn({150, 100});
    for (const auto format : ExportSettings::formats) {
        SCOPED_TRACE(ExportSettings::rawValue(format));
        const auto url = written({image, source, Rating::fromRawValue(3)}, settingsOf(format));
        auto metadata = LoadedMetadata::of(url, {});
        const auto exif = [&](const char* key) { return metadata.exif[key].toString(); };
        EXPECT_EQ(exif("Exif.Image.Make"), "Canon");
        EXPECT_EQ(exif("Exif.Photo.ISOSpeedRatings"), "400");
        EXPECT_EQ(exif("Exif.Image.Orientation"), "1");
        EXPECT_EQ(exif("Exif.Photo.PixelXDimension"), "150");
        EXPECT_EQ(exif("Exif.Photo.PixelYDimension"), "100");
        EXPECT_EQ(exif("Exif.Photo.ColorSpace"), "65535");
        EXPECT_EQ(exif("Exif.GPSInfo.GPSLatitude"), "52/1 30/1 58321/1000");
        EXPECT_EQ(exif("Exif.Canon.OwnerName"), "Somebody with a name");
        for (const auto* key : {"Exif.Image.StripOffsets", "Exif.Image.Rating"})
            EXPECT_EQ(metadata.exif.findKey(Exiv2::ExifKey{key}), metadata.exif.end()) << key;
        EXPECT_EQ(metadata.xmp["Xmp.xmp.Rating"].toString(), "3");
        EXPECT_EQ(metadata.xmp["Xmp.dc.title"].toString(), "lang=\"x-default\" Harbour");
        const auto thumbnail = ImageDecoder::embeddedThumbnail(url, {});
        ASSERT_EQ(thumbnail != nullptr, format == Format::jpeg);
        EXPECT_TRUE(!thumbnail || isNear(corners(*thumbnail)[1], green, 40)) << "of the new picture";

        // A value outside the note would be lost with what lay around it.
        metadata = LoadedMetadata::of(written({image, scattered, Rating{}}, settingsOf(format)), {});
        EXPECT_EQ(exif("Exif.Photo.ISOSpeedRatings"), "400");
        EXPECT_EQ(metadata.exif.findKey(Exiv2::ExifKey{"Exif.Photo.MakerNote"}), metadata.exif.end());
        EXPECT_EQ(metadata.xmp.findKey(Exiv2::XmpKey{"Xmp.xmp.Rating"}), metadata.xmp.end()) << "unrated";
    }
    const auto strip = deepBitmap({70'000, 1}, [](int, int) { return 0U; });
    auto metadata = LoadedMetadata::of(written({strip, source, {}}, settingsOf(Format::png)), {});
    EXPECT_EQ(metadata.exif["Exif.Photo.PixelXDimension"].toString(), "70000");
}

TEST_F(ImageWriterTest, withoutLocationNoByteTellsIt) {
    const auto source = writeFile(folder, "source.jpg", describedPhoto(true));
    const auto image = quartersIn({150, 100});
    const auto asText = [](std::initializer_list<int> bytes) {
        return std::string(bytes.begin(), bytes.end());
    };
    // 58321 of 1000, least and most significant byte first; as text; and the note, which may hold anything.
    const std::array traces{asText({0xD1, 0xE3, 0, 0, 0xE8, 3}), asText({0, 0, 0xE3, 0xD1, 0, 0, 3, 0xE8}),
                            std::string{"30.97"}, std::string{"Somebody"}};
    const auto found = [&](const ExportSettings& settings) {
        const auto bytes = ImageWriter::encode({image, source, {}}, settings, {}).value();
        return std::ranges::count_if(traces,
                                     [&](const auto& trace) { return bytes.find(trace) != bytes.npos; });
    };
    for (const auto format : ExportSettings::formats) {
        EXPECT_EQ(found(settingsOf(format, false, true)), 2) << "GPS and the note";
        EXPECT_EQ(found(settingsOf(format, false, false)), 0);
    }
}

TEST_F(ImageWriterTest, damagedSourcesOnlyTakeTheirMetadataAway) {
    const auto whole = describedPhoto(true);
    const auto image = quartersIn({32, 32});
    for (std::size_t i = 0; i < 700; i += 11) {
        auto cut = whole, changed = whole;
        cut.resize(i);
        for (std::size_t at = i; at < changed.size(); at += 97)
            changed[at] = static_cast<std::uint8_t>(i * 31);
        for (const auto& bytes : {cut, changed}) {
            const auto source = writeFile(folder, "damaged.jpg", bytes);
            const auto url = written({image, source, Rating::fromRawValue(2)}, settingsOf(Format::jpeg));
            ASSERT_TRUE(ImageDecoder::decodeOriginal(url, {}, {})) << i;
            auto metadata = LoadedMetadata::of(url, {});
            ASSERT_EQ(metadata.xmp["Xmp.xmp.Rating"].toString(), "2") << i;
            ASSERT_EQ(metadata.exif["Exif.Image.Orientation"].toString(), "1") << i;
        }
    }
}

} // namespace
} // namespace kelvara
