#include "imaging/DecodingTest.h"

#include <libheif/heif.h>

namespace kelvara {
namespace {

/// Writes the quarters as HEIC, with a stored thumbnail of `thumbnailSide` pixels unless 0.
void writeHeic(const std::string& path, PixelSize size, int thumbnailSide, bool namesP3) {
    auto* context = heif_context_alloc();
    heif_encoder* encoder = nullptr;
    ASSERT_EQ(heif_context_get_encoder_for_format(context, heif_compression_HEVC, &encoder).code,
              heif_error_Ok);
    heif_encoder_set_lossy_quality(encoder, 95);
    heif_encoder_set_parameter_string(encoder, "preset", "ultrafast");
    heif_encoder_set_parameter_string(encoder, "chroma", "444");
    heif_image* image = nullptr;
    heif_image_create(size.width, size.height, heif_colorspace_RGB, heif_chroma_interleaved_RGB, &image);
    heif_image_add_plane(image, heif_channel_interleaved, size.width, size.height, 8);
    int stride = 0;
    auto* pixels = heif_image_get_plane(image, heif_channel_interleaved, &stride);
    const auto recipe = quarters(size);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const auto color = recipe.paint(x, y);
            for (int c = 0; c < 3; ++c) pixels[y * stride + x * 3 + c] = color[static_cast<std::size_t>(c)];
        }
    }
    if (namesP3) {
        const auto& icc = ColorProfile::displayP3()->icc();
        heif_image_set_raw_color_profile(image, "prof", icc.data(), icc.size());
    }
    heif_image_handle* handle = nullptr;
    ASSERT_EQ(heif_context_encode_image(context, image, encoder, nullptr, &handle).code, heif_error_Ok);
    if (thumbnailSide > 0) {
        heif_image_handle* thumbnail = nullptr;
        heif_context_encode_thumbnail(context, image, handle, encoder, nullptr, thumbnailSide, &thumbnail);
        heif_image_handle_release(thumbnail);
    }
    // An orientation that EXIF only repeats, and that must not be applied.
    Bytes exif{'E', 'x', 'i', 'f', 0, 0};
    const auto block = exifBlock(6);
    exif.insert(exif.end(), block.begin(), block.end());
    heif_context_add_exif_metadata(context, handle, exif.data(), static_cast<int>(exif.size()));
    heif_context_write_to_file(context, path.c_str());
    heif_image_handle_release(handle);
    heif_image_release(image);
    heif_encoder_release(encoder);
    heif_context_free(context);
}

TEST(HeifTest, picturesAndThumbnailsComeOutAsTheLibraryTurnsThem) {
    const TemporaryFolder folder;
    const auto url = folder.at("a.heic");
    ASSERT_NO_FATAL_FAILURE(writeHeic(url.path(), {192, 128}, 96, true));
    const auto full = ImageDecoder::decodeOriginal(url, {}, {});
    ASSERT_TRUE(full);
    EXPECT_EQ(full->size(), (PixelSize{192, 128}));
    EXPECT_EQ(*full->profile(), *ColorProfile::displayP3());
    const auto seen = corners(*full);
    EXPECT_TRUE(isNear(seen[0], red, 12));
    EXPECT_TRUE(isNear(seen[1], green, 12));
    EXPECT_TRUE(isNear(seen[2], blue, 12));
    const auto small = ImageDecoder::decodeOriginal(url, 50, {});
    EXPECT_EQ(small->size(), (PixelSize{50, 33}));
    const auto quick = ImageDecoder::embeddedThumbnail(url, {});
    ASSERT_TRUE(quick);
    EXPECT_EQ(quick->size(), (PixelSize{96, 64}));
    EXPECT_EQ(*quick->profile(), *ColorProfile::sRGB()) << "prepared for the screen";
}

/// Writes ten bits a channel of one colour, with the code points of its space.
void writeDeepHeic(const std::string& path, std::array<int, 3> color, int primaries, int transfer) {
    constexpr int side = 64, bits = 10;
    auto* context = heif_context_alloc();
    heif_encoder* encoder = nullptr;
    ASSERT_EQ(heif_context_get_encoder_for_format(context, heif_compression_HEVC, &encoder).code,
              heif_error_Ok);
    heif_encoder_set_lossy_quality(encoder, 100);
    heif_encoder_set_parameter_string(encoder, "preset", "ultrafast");
    heif_encoder_set_parameter_string(encoder, "chroma", "444");
    heif_image* image = nullptr;
    heif_image_create(side, side, heif_colorspace_RGB, heif_chroma_interleaved_RRGGBB_LE, &image);
    heif_image_add_plane(image, heif_channel_interleaved, side, side, bits);
    int stride = 0;
    auto* pixels = heif_image_get_plane(image, heif_channel_interleaved, &stride);
    for (int y = 0; y < side; ++y) {
        for (int i = 0; i < side * 3; ++i) {
            const int value = color[static_cast<std::size_t>(i % 3)];
            pixels[y * stride + i * 2] = static_cast<std::uint8_t>(value & 0xFF);
            pixels[y * stride + i * 2 + 1] = static_cast<std::uint8_t>(value >> 8);
        }
    }
    auto* nclx = heif_nclx_color_profile_alloc();
    nclx->color_primaries = static_cast<heif_color_primaries>(primaries);
    nclx->transfer_characteristics = static_cast<heif_transfer_characteristics>(transfer);
    nclx->matrix_coefficients = heif_matrix_coefficients_ITU_R_BT_2020_2_non_constant_luminance;
    nclx->full_range_flag = 1;
    heif_image_set_nclx_color_profile(image, nclx);
    auto* options = heif_encoding_options_alloc();
    options->macOS_compatibility_workaround_no_nclx_profile = 0;
    ASSERT_EQ(heif_context_encode_image(context, image, encoder, options, nullptr).code, heif_error_Ok);
    heif_encoding_options_free(options);
    heif_context_write_to_file(context, path.c_str());
    heif_nclx_color_profile_free(nclx);
    heif_image_release(image);
    heif_encoder_release(encoder);
    heif_context_free(context);
}

TEST(HeifTest, tenBitsAndHighDynamicRangeComeOutAsAScreenShowsThem) {
    constexpr int bt2020 = 9, bt709 = 1, sRGB = 13, pq = 16, hlg = 18;
    // In ten bits; the light of PQ by SMPTE ST 2084, of HLG by ITU-R BT.2100.
    struct Case {
        int primaries, transfer;
        std::array<int, 3> stored;
        Color shown;
        int tolerance;
    };
    const std::array cases{
        Case{bt709, sRGB, {602, 301, 802}, {150, 75, 200}, 2},
        Case{bt2020, pq, {0, 0, 0}, black, 1},
        Case{bt2020, pq, {387, 387, 387}, {99, 99, 99}, 2},    // 26 cd/m2, a middle grey
        Case{bt2020, pq, {594, 594, 594}, {228, 228, 228}, 4}, // diffuse white, at 203 cd/m2
        Case{bt2020, pq, {769, 769, 769}, white, 1},           // 1000 cd/m2
        Case{bt2020, pq, {1023, 1023, 1023}, white, 1},
        Case{bt2020, hlg, {767, 767, 767}, {228, 228, 228}, 4}, // diffuse white
        Case{bt2020, hlg, {1023, 1023, 1023}, white, 1},
        Case{bt2020, sRGB, {752, 752, 752}, {187, 187, 187}, 2},
    };
    const TemporaryFolder folder;
    const auto url = folder.at("a.hif");
    for (const auto& [primaries, transfer, stored, shown, tolerance] : cases) {
        ASSERT_NO_FATAL_FAILURE(writeDeepHeic(url.path(), stored, primaries, transfer));
        const auto image = ImageDecoder::prepareForDisplay(ImageDecoder::decodeOriginal(url, 32, {}), {});
        ASSERT_TRUE(image);
        ASSERT_EQ(image->format(), PixelFormat::bgrx8);
        EXPECT_TRUE(isNear(colorAt(*image, 9, 9), shown, tolerance)) << transfer << ' ' << stored[0];
        const auto deep = ImageDecoder::decodeOriginal(url, {}, {}, Depth::full);
        ASSERT_EQ(deep->format(), PixelFormat::bgrx16);
        EXPECT_NEAR(deep->row16(9)[36], stored[2] * 65535 / 1023, 3 * 64);
    }
    EXPECT_EQ(*ColorProfile::fromCodePoints(12, sRGB), *ColorProfile::displayP3());
    EXPECT_EQ(ColorProfile::fromCodePoints(bt709, 1), ColorProfile::sRGB());
    EXPECT_FALSE(ColorProfile::fromCodePoints(200, sRGB));
    EXPECT_FALSE(ColorProfile::fromCodePoints(bt709, 200));
}

} // namespace
} // namespace kelvara
