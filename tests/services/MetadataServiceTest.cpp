#include "services/MetadataService.h"

#include "imaging/codecs/Exiv2Setup.h"
#include "imaging/metadata/TiffExcerpt.h"
#include "samplecard/DNG.h"
#include "samplecard/HEIC.h"
#include "samplecard/JPEG.h"
#include "services/metadata/ExifReader.h"
#include "services/metadata/MetadataDump.h"
#include "support/JpegMaker.h"
#include "support/ManualExecutor.h"
#include "support/TemporaryFolder.h"
#include "support/TiffMaker.h"

#include <exiv2/exiv2.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kelvara {
namespace {

using namespace samplecard;
using testing::ElementsAre;

Shot shot() {
    Shot result;
    result.time = 1'709'993'133; // 2024-03-09 14:05:33
    result.fNumber = {28, 10};
    result.iso = 400;
    result.bias = {-2, 3};
    result.orientation = 6;
    result.position = Shot::Position{46.5, -7.75, 560};
    return result;
}

std::string smallDNG() { return encodeDNG(Picture{640, 480}, shot(), {}); }

std::string text(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

/// The photo of a file whose EXIF directories are laid out by hand.
std::string jpegWith(TiffMaker& tiff, std::uint32_t first) {
    return text(makeJpeg({.exif = tiff.finish(first)}));
}

class MetadataFileTest : public testing::Test {
protected:
    [[nodiscard]] ExifInfo exif(std::string_view name, std::string_view bytes) const {
        return readExif(m_folder.write(name, bytes), {});
    }
    [[nodiscard]] std::vector<MetadataSection> sections(std::string_view name, std::string_view bytes) const {
        return dumpMetadata(m_folder.write(name, bytes), {});
    }
    [[nodiscard]] static std::string value(const std::vector<MetadataSection>& sections,
                                           std::string_view title, std::string_view label) {
        for (const auto& section : sections) {
            for (const auto& row : section.rows) {
                if (section.title == title && row.label == label) return row.value;
            }
        }
        return "(missing)";
    }

    TemporaryFolder m_folder;
};

TEST_F(MetadataFileTest, everyKindOfPhotoTellsItsCapture) {
    const Picture upright{64, 96};
    for (const auto& [name, bytes] : {std::pair{"a.jpg", photoJPEG(upright, shot(), {})},
                                      {"a.heic", encodeHEIC(upright, shot(), {})},
                                      {"a.dng", encodeDNG(upright, shot(), {})}}) {
        SCOPED_TRACE(name);
        const auto info = exif(name, bytes);
        EXPECT_EQ(info.cameraMake, "Kelvara");
        EXPECT_EQ(info.cameraModel, "K1");
        EXPECT_EQ(info.lensModel, "KL 24-70mm F2.8");
        EXPECT_EQ(info.captureDate, ExifInfo::parseDate("2024:03:09 14:05:33"));
        EXPECT_EQ(info.summaryLine(), "ƒ/2.8 · 1/250s · ISO 400");
        EXPECT_EQ(info.exposureBiasText(), "-0.7 EV");
        EXPECT_EQ(info.focalLengthText(), "35mm");
        EXPECT_EQ(info.pixelWidth, 96); // as stored
        EXPECT_EQ(info.pixelHeight, 64);
        EXPECT_EQ(info.orientation, 6);
        EXPECT_EQ(value(dumpMetadata(m_folder.at(name), {}), "Exif", "Exposure Time"), "0.004");
    }
}

TEST_F(MetadataFileTest, exifThatExiv2OverlooksIsFoundByTheDecoder) {
    // In the smallest files it doesn't see the item.
    const auto bytes = encodeHEIC(Picture{16, 16}, shot(), {.thumbnailSide = 0});
    EXPECT_EQ(exif("a.heic", bytes).summaryLine(), "ƒ/2.8 · 1/250s · ISO 400");
}

TEST_F(MetadataFileTest, aValueThatMeansNothingIsAbsent) {
    TiffMaker tiff;
    const auto noFraction = tiff.addLongs({5, 0});
    const auto date = tiff.add(
        {'0', '0', '0', '0', ':', '0', '0', ':', '0', '0', ' ', '0', '0', ':', '0', '0', ':', '0', '0', 0});
    const auto blanks = tiff.add({' ', ' ', ' ', ' ', ' ', 0});
    constexpr std::uint16_t ascii = 2, rational = 5, signedRational = 10;
    const auto photo = tiff.addDirectory({{0x829A, noFraction, 1, rational},
                                          {0x829D, blanks, 6, ascii}, // a text for an f-number
                                          {0x8827, 0, 1, TiffMaker::shortType},
                                          {0x9003, date, 20, ascii},
                                          {0x9204, noFraction, 1, signedRational},
                                          {0xA434, blanks, 6, ascii}});
    const auto first = tiff.addDirectory({{0x010F, blanks, 6, ascii}, {0x8769, photo}});
    auto info = exif("a.jpg", jpegWith(tiff, first));
    EXPECT_EQ(info.pixelWidth, 64);
    info.pixelWidth = info.pixelHeight = info.orientation = std::nullopt;
    EXPECT_EQ(info, ExifInfo{});
}

TEST_F(MetadataFileTest, everythingIsDumpedInReadableForm) {
    const auto url = m_folder.write("a.jpg", photoJPEG(Picture{64, 48}, shot(), {}));
    prepareExiv2();
    {
        const auto image = Exiv2::ImageFactory::open(url.path());
        image->readMetadata();
        auto& exif = image->exifData();
        exif.erase(exif.findKey(Exiv2::ExifKey{"Exif.Photo.LensModel"}));
        exif["Exif.Photo.UserComment"] = "charset=Ascii Evening";
        exif["Exif.Image.XPTitle"] = "76 0 97 0 99 0 32 0 233 0 0 0"; // in UTF-16
        exif["Exif.Image.TIFFEPStandardID"] = "65 0 1 2";
        exif["Exif.Image.CFAPattern"] = "50";
        Exiv2::DataValue blob;
        const std::vector<Exiv2::byte> noise(1500, 0x80);
        blob.read(noise.data(), static_cast<long>(noise.size()));
        exif.add(Exiv2::ExifKey{"Exif.Photo.DeviceSettingDescription"}, &blob);
        for (const auto* word : {"lake", "dusk"}) {
            Exiv2::StringValue keyword{word};
            image->iptcData().add(Exiv2::IptcKey{"Iptc.Application2.Keywords"}, &keyword);
        }
        image->xmpData()["Xmp.aux.Lens"] = "KL 35mm F1.4";
        image->xmpData()["Xmp.dc.creator"] = "Somebody";
        image->writeMetadata();
    }
    EXPECT_EQ(readExif(url, {}).lensModel, "KL 35mm F1.4");
    const auto sections = dumpMetadata(url, {});
    std::vector<std::string> titles;
    for (const auto& section : sections) titles.push_back(section.title);
    EXPECT_THAT(titles, ElementsAre("Exif", "TIFF", "ExifAux", "GPS", "IPTC", "Thumbnail", "XMP", "Image"));
    EXPECT_EQ(value(sections, "Exif", "F Number"), "2.8");
    EXPECT_EQ(value(sections, "Exif", "Date Time Original"), "2024:03:09 14:05:33");
    EXPECT_EQ(value(sections, "Exif", "User Comment"), "Evening");
    EXPECT_EQ(value(sections, "Exif", "Device Setting Description"), "2 KB");
    EXPECT_EQ(value(sections, "TIFF", "Make"), "Kelvara");
    EXPECT_EQ(value(sections, "TIFF", "XP Title"), "Lac é");
    EXPECT_EQ(value(sections, "TIFF", "TIFFEP Standard ID"), "65, 0, 1, 2");
    EXPECT_EQ(value(sections, "TIFF", "CFA Pattern"), "50");
    EXPECT_EQ(value(sections, "ExifAux", "Lens Model"), "KL 35mm F1.4");
    EXPECT_EQ(value(sections, "GPS", "GPS Latitude"), "46.5");
    EXPECT_EQ(value(sections, "GPS", "GPS Longitude"), "7.75");
    EXPECT_EQ(value(sections, "IPTC", "Keywords"), "lake, dusk");
    EXPECT_EQ(value(sections, "XMP", "creator"), "Somebody");
    EXPECT_EQ(value(sections, "Image", "Pixel Width"), "48"); // as stored
}

TEST_F(MetadataFileTest, forgedFilesGiveWhatCanBeReadAndNothingMore) {
    TiffMaker loop;
    const auto self = loop.position();
    loop.addDirectory({{0x8769, self}, {0x014A, self}, {0x0110, 0x314B, 3, 2}}, self);
    EXPECT_EQ(exif("loop.jpg", jpegWith(loop, self)).cameraModel, "K1");

    TiffMaker huge;
    const auto photo =
        huge.addDirectory({{0x829A, 8, 0x0FFFFFFF, 5}, {0x927C, 8, 0x7FFFFFFF, 7}, {0x8827, 200, 1, 3}});
    const auto first = huge.addDirectory({{0x010F, 8, 0x7FFFFFFF, 2}, {0x8769, photo}});
    EXPECT_EQ(exif("huge.jpg", jpegWith(huge, first)).iso, 200);

    // A picture's worth of bytes claimed by each of many tags.
    TiffMaker copies;
    copies.add(Bytes(4'000'000));
    std::vector<TiffMaker::Entry> entries;
    for (std::uint16_t tag = 0; tag < 200; ++tag)
        entries.push_back({static_cast<std::uint16_t>(0xC000 + tag), 8, 4'000'000, 7});
    const auto directory = copies.addDirectory(entries);
    const auto excerpt = TiffExcerpt::read(ByteRange{ByteSource::ofMemory(copies.finish(directory))});
    ASSERT_TRUE(excerpt);
    EXPECT_TRUE(excerpt->bytes().empty());

    // Cut off anywhere, and with every part overwritten once.
    const auto jpeg = photoJPEG(Picture{64, 48}, shot(), {});
    const auto dng = encodeDNG(Picture{64, 48}, shot(), {});
    for (const auto& [name, whole] : {std::pair{"cut.jpg", jpeg}, {"cut.dng", dng}}) {
        for (std::size_t at = 0; at < std::min<std::size_t>(whole.size(), 2000); at += 37) {
            static_cast<void>(sections(name, whole.substr(0, at)));
            auto damaged = whole;
            damaged.replace(at, 8, "\xFF\xFF\xFF\xFF\x7F\xFF\xFF\xFF");
            static_cast<void>(exif(name, damaged));
        }
    }
    EXPECT_EQ(exif("none.jpg", ""), ExifInfo{});
    EXPECT_TRUE(dumpMetadata(m_folder.at("missing.cr3"), {}).empty());
}

class CountedBytes : public ByteSource {
public:
    explicit CountedBytes(std::string bytes) : m_bytes{std::move(bytes)} {}
    [[nodiscard]] std::uint64_t size() const override { return m_bytes.size(); }
    [[nodiscard]] std::size_t read(std::uint64_t offset, std::span<std::uint8_t> to) const override {
        const auto count =
            m_bytes.copy(reinterpret_cast<char*>(to.data()), to.size(), static_cast<std::size_t>(offset));
        m_count += count;
        return count;
    }
    [[nodiscard]] std::size_t count() const { return m_count; }

private:
    std::string m_bytes;
    mutable std::size_t m_count = 0;
};

TEST_F(MetadataFileTest, ofARawFileOnlyTheDirectoriesAreRead) {
    auto bytes = smallDNG();
    bytes.resize(20'000'000);
    const auto file = std::make_shared<CountedBytes>(std::move(bytes));
    const auto excerpt = TiffExcerpt::read(ByteRange{file});
    ASSERT_TRUE(excerpt);
    EXPECT_LT(file->count(), 200'000U);
    const auto image =
        Exiv2::ImageFactory::open(excerpt->bytes().data(), static_cast<long>(excerpt->bytes().size()));
    image->readMetadata();
    EXPECT_EQ(image->exifData()["Exif.Photo.LensModel"].toString(), "KL 24-70mm F2.8");
}

/// Files that say only their name, and how often they were asked.
class MetadataServiceTest : public testing::Test {
protected:
    ExifInfo read(const FileURL& url) {
        ++m_reads;
        if (m_whileReading) m_whileReading();
        ExifInfo info;
        if (url.name() != "unreadable.jpg") info.cameraModel = url.name();
        return info;
    }
    MetadataRequest ask(const FileURL& url,
                        MetadataService::Priority priority = MetadataService::Priority::visible) {
        return m_service.exif(url, priority, [this](const ExifInfo& info) { m_answers.push_back(info); });
    }

    ManualExecutor m_visible, m_background, m_main;
    int m_reads = 0;
    std::function<void()> m_whileReading;
    std::vector<ExifInfo> m_answers;
    MetadataService m_service{
        {m_visible, m_background, m_main},
        {.exif = [this](const FileURL& url, const std::stop_token&) { return read(url); },
         .sections =
             [](const FileURL&, const std::stop_token&) {
                 return std::vector<MetadataSection>{{"Exif", {}}};
             }}};
    const FileURL m_photo{"/card/a.jpg"};
};

TEST_F(MetadataServiceTest, aFileIsReadOnceAndThenKnownAtOnce) {
    EXPECT_FALSE(m_service.cachedExif(m_photo));
    const auto first = ask(m_photo, MetadataService::Priority::background);
    EXPECT_EQ(m_visible.pending(), 0U);
    runAll(m_background, m_main);
    EXPECT_EQ(m_service.cachedExif(m_photo)->cameraModel, "a.jpg");
    const auto second = ask(m_photo);
    EXPECT_EQ(m_answers.size(), 1U); // never before the request has returned
    runAll(m_visible, m_main);
    EXPECT_EQ(m_answers.size(), 2U);
    EXPECT_EQ(m_reads, 1);
}

TEST_F(MetadataServiceTest, aWithdrawnRequestIsNeitherReadNorAnswered) {
    auto early = ask(m_photo);
    early = {};
    auto late = ask(FileURL{"/card/b.jpg"});
    auto sections = m_service.detailedMetadata(m_photo, [](const auto&) { FAIL(); });
    m_visible.runAll();
    late.cancel();
    sections.cancel();
    m_main.runAll();
    EXPECT_EQ(m_reads, 1);
    EXPECT_TRUE(m_answers.empty());
}

TEST_F(MetadataServiceTest, whatIsReadWhileTheCacheIsEmptiedIsNotKept) {
    m_whileReading = [this] { m_service.emptyCache(); };
    const auto request = ask(m_photo);
    runAll(m_visible, m_main);
    EXPECT_EQ(m_answers.size(), 1U);
    EXPECT_FALSE(m_service.cachedExif(m_photo));
    m_whileReading = {};
    const auto again = ask(m_photo);
    runAll(m_visible, m_main);
    EXPECT_TRUE(m_service.cachedExif(m_photo));
}

TEST_F(MetadataServiceTest, anUnreadableFileIsTriedAgain) {
    const FileURL unreadable{"/card/unreadable.jpg"};
    for (int i = 0; i < 2; ++i) {
        const auto request = ask(unreadable);
        runAll(m_visible, m_main);
    }
    EXPECT_THAT(m_answers, ElementsAre(ExifInfo{}, ExifInfo{}));
    EXPECT_EQ(m_reads, 2);
}

} // namespace
} // namespace kelvara
