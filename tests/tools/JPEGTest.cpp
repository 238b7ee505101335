#include "samplecard/JPEG.h"

#include "samplecard/Scene.h"
#include "tools/Readers.h"

#include <gtest/gtest.h>
#include <lcms2.h>

namespace kelvara::samplecard {
namespace {

/// Turns what a file stores as a viewer does, by the definition of the EXIF tag: which side of the stored
/// picture is the visual top and which the visual left.
Decoded turned(const Decoded& stored, int orientation) {
    Decoded upright = stored;
    if (orientation >= 5) std::swap(upright.width, upright.height);
    for (int y = 0; y < stored.height; ++y) {
        for (int x = 0; x < stored.width; ++x) {
            const int right = stored.width - 1 - x;
            const int below = stored.height - 1 - y;
            int toX = x;
            int toY = y;
            switch (orientation) {
            case 2:
                toX = right;
                break;
            case 3:
                toX = right;
                toY = below;
                break;
            case 4:
                toY = below;
                break;
            case 5:
                toX = y;
                toY = x;
                break; // row 0 is the left side, column 0 the top
            case 6:
                toX = below;
                toY = x;
                break; // row 0 is the right side, column 0 the top
            case 7:
                toX = below;
                toY = right;
                break;
            case 8:
                toX = y;
                toY = right;
                break; // row 0 is the left side, column 0 the bottom
            default:
                break;
            }
            for (int channel = 0; channel < 3; ++channel)
                upright.samples[static_cast<std::size_t>((toY * upright.width + toX) * 3 + channel)] =
                    static_cast<std::uint8_t>(stored.at(x, y, channel));
        }
    }
    return upright;
}

TEST(JPEGTest, everyOrientationIsUprightOnceItIsApplied) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
        Shot shot;
        shot.orientation = orientation;
        const std::string bytes = photoJPEG(quarters(96, 64), shot, {});
        const auto metadata = metadataOf(bytes);
        EXPECT_EQ(exifOf(*metadata, "Exif.Image.Orientation"), std::to_string(orientation));
        const Decoded stored = decodeJPEG(bytes);
        EXPECT_EQ(stored.width, orientation >= 5 ? 64 : 96);
        EXPECT_EQ(exifOf(*metadata, "Exif.Photo.PixelXDimension"), std::to_string(stored.width));
        EXPECT_LE(distanceFromQuarters(turned(stored, orientation)), 6) << orientation;
    }
}

TEST(JPEGTest, exifSaysWhatTheShotSays) {
    Shot shot;
    shot.time = 1714716765;
    shot.exposure = {1, 320};
    shot.iso = 640;
    shot.bias = {-2, 3};
    shot.position = Shot::Position{-33.5, 151.25, 12};
    const auto metadata = metadataOf(photoJPEG(quarters(48, 32), shot, {}));
    EXPECT_EQ(exifOf(*metadata, "Exif.Photo.DateTimeOriginal"), "2024:05:03 06:12:45");
    EXPECT_EQ(exifOf(*metadata, "Exif.Image.Make"), "Kelvara");
    EXPECT_EQ(exifOf(*metadata, "Exif.Photo.ExposureTime"), "1/320");
    EXPECT_EQ(exifOf(*metadata, "Exif.Photo.ISOSpeedRatings"), "640");
    EXPECT_EQ(exifOf(*metadata, "Exif.Photo.ExposureBiasValue"), "-2/3");
    EXPECT_EQ(exifOf(*metadata, "Exif.GPSInfo.GPSLatitudeRef"), "S");
    EXPECT_EQ(exifOf(*metadata, "Exif.GPSInfo.GPSLongitude"), "151/1 15/1 0/100");
}

TEST(JPEGTest, theEmbeddedThumbnailLiesBetweenBlackBars) {
    const std::string bytes = photoJPEG(quarters(300, 200), Shot{}, {});
    const auto metadata = metadataOf(bytes);
    const Exiv2::DataBuf thumbnail = Exiv2::ExifThumbC{metadata->exifData()}.copy();
    const Decoded decoded = decodeJPEG(
        {reinterpret_cast<const char*>(thumbnail.pData_), static_cast<std::size_t>(thumbnail.size_)});
    EXPECT_EQ(decoded.width, 160);
    EXPECT_EQ(decoded.height, 120);
    EXPECT_LE(decoded.at(80, 2, 1), 8);
    EXPECT_LE(decoded.at(80, 117, 1), 8);
    EXPECT_GE(decoded.at(120, 30, 1), 150);
}

TEST(JPEGTest, aWideProfileShowsTheSameColours) {
    for (const ColourProfile profile : {ColourProfile::adobeRGB, ColourProfile::displayP3}) {
        JPEGOptions options;
        options.colours = profile;
        options.quality = 97;
        options.fullChroma = true;
        const std::string bytes = photoJPEG(quarters(96, 64), Shot{}, options);
        Decoded decoded = decodeJPEG(bytes);
        EXPECT_GT(distanceFromQuarters(decoded), 12) << "the samples were not converted";

        const auto metadata = metadataOf(bytes);
        ASSERT_TRUE(metadata->iccProfileDefined());
        const Exiv2::DataBuf icc = *metadata->iccProfile();
        cmsHPROFILE from = cmsOpenProfileFromMem(icc.pData_, static_cast<cmsUInt32Number>(icc.size_));
        cmsHPROFILE to = cmsCreate_sRGBProfile();
        ASSERT_NE(from, nullptr);
        cmsHTRANSFORM transform =
            cmsCreateTransform(from, TYPE_RGB_8, to, TYPE_RGB_8, INTENT_RELATIVE_COLORIMETRIC, 0);
        cmsDoTransform(transform, decoded.samples.data(), decoded.samples.data(),
                       static_cast<cmsUInt32Number>(decoded.samples.size() / 3));
        cmsDeleteTransform(transform);
        cmsCloseProfile(from);
        cmsCloseProfile(to);
        EXPECT_LE(distanceFromQuarters(decoded), 4);
    }
}

TEST(JPEGTest, wideColoursCanBeDeclaredByTheInteroperabilityIndexAlone) {
    JPEGOptions options;
    options.colours = ColourProfile::adobeRGB;
    options.embedsProfile = false;
    Shot shot;
    shot.colourTag = Shot::ColourTag::adobeByIndex;
    const auto metadata = metadataOf(photoJPEG(quarters(48, 32), shot, options));
    EXPECT_FALSE(metadata->iccProfileDefined());
    EXPECT_EQ(exifOf(*metadata, "Exif.Photo.ColorSpace"), "65535");
    EXPECT_EQ(exifOf(*metadata, "Exif.Iop.InteroperabilityIndex"), "R03");
}

TEST(JPEGTest, greyInkAndProgressiveFilesAreWhatTheySay) {
    JPEGOptions grey;
    grey.components = JPEGOptions::Components::grey;
    EXPECT_EQ(decodeJPEG(photoJPEG(quarters(48, 32), Shot{}, grey)).components, 1);

    JPEGOptions inks;
    inks.components = JPEGOptions::Components::cmyk;
    inks.quality = 96;
    Decoded cmyk = decodeJPEG(photoJPEG(quarters(96, 64), Shot{}, inks));
    ASSERT_EQ(cmyk.components, 4);
    EXPECT_TRUE(cmyk.hasAdobeMarker);
    // Inverted inks multiply to the light that is left.
    Decoded light{cmyk.width, cmyk.height, 3, {}, false, false};
    for (std::size_t i = 0; i < cmyk.samples.size(); i += 4)
        for (std::size_t ink = 0; ink < 3; ++ink)
            light.samples.push_back(
                static_cast<std::uint8_t>(cmyk.samples[i + ink] * cmyk.samples[i + 3] / 255));
    EXPECT_LE(distanceFromQuarters(light), 6);

    JPEGOptions progressive;
    progressive.progressive = true;
    EXPECT_TRUE(decodeJPEG(photoJPEG(quarters(48, 32), Shot{}, progressive)).isProgressive);
}

} // namespace
} // namespace kelvara::samplecard
