#include "model/ExifInfo.h"
#include "model/MetadataSection.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

TEST(ExifInfoTest, numbersAreRoundedAsOnPaper) {
    struct Case {
        double value;
        const char *aperture, *bias, *focalLength;
    };
    for (const auto& [value, aperture, bias, focalLength] : {Case{2.8, "ƒ/2.8", "+2.8 EV", "3mm"},
                                                             {8, "ƒ/8", "+8 EV", "8mm"},
                                                             {0.95, "ƒ/1", "+1 EV", "1mm"},
                                                             {0.35, "ƒ/0.4", "+0.4 EV", "0mm"},
                                                             {0.25, "ƒ/0.2", "+0.2 EV", "0mm"},
                                                             {2.5, "ƒ/2.5", "+2.5 EV", "2mm"},
                                                             {99.96, "ƒ/100", "+100 EV", "100mm"},
                                                             {2.0 / 3, "ƒ/0.7", "+0.7 EV", "1mm"}}) {
        ExifInfo info;
        info.fNumber = info.exposureBias = info.focalLength = value;
        EXPECT_EQ(info.apertureText(), aperture);
        EXPECT_EQ(info.exposureBiasText(), bias);
        EXPECT_EQ(info.focalLengthText(), focalLength);
    }
}

TEST(ExifInfoTest, theBiasAlwaysHasASign) {
    ExifInfo info;
    for (const auto& [bias, text] :
         {std::pair{0.0, "+0 EV"}, {-0.0, "+0 EV"}, {-0.04, "+0 EV"}, {-0.67, "-0.7 EV"}, {-1.0, "-1 EV"}}) {
        info.exposureBias = bias;
        EXPECT_EQ(info.exposureBiasText(), text);
    }
}

TEST(ExifInfoTest, timesBelowASecondAreFractions) {
    ExifInfo info;
    for (const auto& [time, text] : {std::pair{0.004, "1/250s"},
                                     {0.3, "1/3s"},
                                     {1.0, "1s"},
                                     {1.3, "1.3s"},
                                     {2.5, "2.5s"},
                                     {30.0, "30s"},
                                     {1.0 / 8000, "1/8000s"},
                                     {0.0, ""},
                                     {-1.0, ""}}) {
        info.exposureTime = time;
        EXPECT_EQ(info.shutterText(), text) << time;
    }
}

TEST(ExifInfoTest, theSummaryJoinsWhatThereIs) {
    ExifInfo info;
    EXPECT_EQ(info.summaryLine(), "");
    info.iso = 100;
    EXPECT_EQ(info.summaryLine(), "ISO 100");
    info.fNumber = 2.8;
    EXPECT_EQ(info.summaryLine(), "ƒ/2.8 · ISO 100");
    info.exposureTime = 0.004;
    EXPECT_EQ(info.summaryLine(), "ƒ/2.8 · 1/250s · ISO 100");
}

TEST(ExifInfoTest, aDateIsSixNumbersThatTheCalendarKnows) {
    using namespace std::chrono;
    const auto date = ExifInfo::parseDate("2024:03:09 14:05:33");
    ASSERT_TRUE(date);
    EXPECT_EQ(*date, local_days{2024y / March / 9} + 14h + 5min + 33s);
    EXPECT_TRUE(ExifInfo::parseDate("2024:02:29 00:00:00"));
    for (const auto* text :
         {"", "2024:03:09", "2024:03:09 14:05", "2024:03:09 14:05:x3", "2024:03:09T14:05:33",
          "0000:00:00 00:00:00", "2023:02:29 00:00:00", "2024:13:01 00:00:00", "2024:03:09 24:00:00",
          "    :  :     :  :  ", "2024:03:09 14:05:33 1", "99999999999:03:09 14:05:33"}) {
        EXPECT_FALSE(ExifInfo::parseDate(text)) << text;
    }
}

TEST(ExifInfoTest, everyFieldCountsForEqualityAndHash) {
    ExifInfo a;
    a.lensModel = "35mm";
    a.captureDate = ExifInfo::parseDate("2024:03:09 14:05:33");
    auto b = a;
    EXPECT_EQ(std::hash<ExifInfo>{}(a), std::hash<ExifInfo>{}(b));
    b.orientation = 6;
    EXPECT_NE(a, b);
    EXPECT_NE(std::hash<ExifInfo>{}(a), std::hash<ExifInfo>{}(b));
}

TEST(MetadataSectionTest, tagNamesReadAsWords) {
    for (const auto& [key, words] : {std::pair{"ExposureTime", "Exposure Time"},
                                     {"DateTimeOriginal", "Date Time Original"},
                                     {"ISOSpeedRatings", "ISO Speed Ratings"},
                                     {"FNumber", "F Number"},
                                     {"PixelXDimension", "Pixel X Dimension"},
                                     {"GPSLatitude", "GPS Latitude"},
                                     {"ISO", "ISO"},
                                     {"0x00a3", "0x00a3"},
                                     {"", ""}}) {
        EXPECT_EQ(humanize(key), words);
    }
}

TEST(MetadataSectionTest, theKnownSectionsComeFirstAndTheOthersAsTheyCame) {
    std::vector<MetadataSection> sections{
        {"XMP", {}}, {"IPTC", {}}, {"Canon", {}}, {"GPS", {}}, {"Exif", {{"B", "1"}, {"A", "2"}, {"B", "0"}}},
        {"TIFF", {}}};
    sortForReading(sections);
    std::vector<std::string> titles;
    for (const auto& section : sections) titles.push_back(section.title);
    EXPECT_EQ(titles, (std::vector<std::string>{"Exif", "TIFF", "GPS", "IPTC", "XMP", "Canon"}));
    EXPECT_EQ(sections.front().rows, (std::vector<MetadataSection::Row>{{"A", "2"}, {"B", "1"}, {"B", "0"}}));
}

} // namespace
} // namespace kelvara
