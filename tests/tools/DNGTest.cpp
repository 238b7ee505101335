#include "samplecard/DNG.h"

#include "samplecard/Noise.h"
#include "tools/Readers.h"

#include <gtest/gtest.h>
#include <libraw/libraw.h>
#include <memory>

namespace kelvara::samplecard {
namespace {

class DNGStorageTest : public testing::TestWithParam<DNGOptions::Storage> {};

INSTANTIATE_TEST_SUITE_P(All, DNGStorageTest,
                         testing::Values(DNGOptions::Storage::sixteenBits,
                                         DNGOptions::Storage::fourteenBitsPacked,
                                         DNGOptions::Storage::lossless));

TEST_P(DNGStorageTest, developsIntoThePicture) {
    DNGOptions options;
    options.storage = GetParam();
    // An uneven number of cells, so that packed rows do not end on a byte by themselves.
    std::string bytes = encodeDNG(quarters(186, 124), Shot{}, options);
    const auto raw = std::make_unique<LibRaw>();
    ASSERT_EQ(raw->open_buffer(bytes.data(), bytes.size()), LIBRAW_SUCCESS);
    auto& parameters = raw->imgdata.params;
    parameters.use_camera_wb = 1;
    parameters.no_auto_bright = 1;
    parameters.gamm[0] = 1 / 2.4;
    parameters.gamm[1] = 12.92;
    ASSERT_EQ(raw->unpack(), LIBRAW_SUCCESS);
    ASSERT_EQ(raw->dcraw_process(), LIBRAW_SUCCESS);
    int error = 0;
    libraw_processed_image_t* image = raw->dcraw_make_mem_image(&error);
    ASSERT_NE(image, nullptr);
    Decoded decoded{image->width, image->height, image->colors, {image->data, image->data + image->data_size},
                    false,        false};
    LibRaw::dcraw_clear_mem(image);
    EXPECT_EQ(decoded.width, 186);
    EXPECT_EQ(decoded.height, 124);
    EXPECT_LE(distanceFromQuarters(decoded), 3);
}

TEST(DNGTest, theMosaicSurvivesEveryStorageUnchanged) {
    // Noise holds every size of difference that the lossless form has to code.
    Picture noise{64, 48};
    Random random{3};
    for (auto& sample : noise.samples) sample = static_cast<std::uint16_t>(random.integer(0, 65535));
    const auto mosaic = [&](DNGOptions::Storage storage) {
        DNGOptions options;
        options.storage = storage;
        std::string bytes = encodeDNG(noise, Shot{}, options);
        const auto raw = std::make_unique<LibRaw>();
        EXPECT_EQ(raw->open_buffer(bytes.data(), bytes.size()), LIBRAW_SUCCESS);
        EXPECT_EQ(raw->unpack(), LIBRAW_SUCCESS);
        const std::uint16_t* samples = raw->imgdata.rawdata.raw_image;
        return std::vector<std::uint16_t>(samples, samples + std::ptrdiff_t{64} * 48);
    };
    const auto plain = mosaic(DNGOptions::Storage::sixteenBits);
    EXPECT_GT(*std::max_element(plain.begin(), plain.end()), 12000);
    EXPECT_EQ(mosaic(DNGOptions::Storage::fourteenBitsPacked), plain);
    EXPECT_EQ(mosaic(DNGOptions::Storage::lossless), plain);
}

TEST(DNGTest, holdsThreePreviewsOfRisingSize) {
    Shot shot;
    shot.iso = 400;
    const std::string bytes = encodeDNG(quarters(1800, 1200), shot, {});
    const auto metadata = metadataOf(bytes);
    const Exiv2::PreviewPropertiesList previews = Exiv2::PreviewManager{*metadata}.getPreviewProperties();
    ASSERT_EQ(previews.size(), 3U);
    EXPECT_EQ(previews[0].width_, 256U);
    EXPECT_EQ(previews[1].width_, 1616U);
    EXPECT_EQ(previews[2].width_, 1800U);
    EXPECT_EQ(exifOf(*metadata, "Exif.Photo.ISOSpeedRatings"), "400");

    std::string copy = bytes;
    const auto raw = std::make_unique<LibRaw>();
    ASSERT_EQ(raw->open_buffer(copy.data(), copy.size()), LIBRAW_SUCCESS);
    ASSERT_EQ(raw->unpack_thumb(), LIBRAW_SUCCESS);
    EXPECT_EQ(raw->imgdata.thumbnail.tformat, LIBRAW_THUMBNAIL_JPEG);
    EXPECT_EQ(raw->imgdata.thumbnail.twidth, 1800);
    const auto& thumbnail = raw->imgdata.thumbnail;
    EXPECT_LE(distanceFromQuarters(decodeJPEG({thumbnail.thumb, thumbnail.tlength})), 6);
}

} // namespace
} // namespace kelvara::samplecard
