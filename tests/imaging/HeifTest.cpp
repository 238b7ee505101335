#include "imaging/DecodingTest.h"

#include <libheif/heif.h>

// The encoder, which only tests use, keeps some memory to the end.
extern "C" const char* __lsan_default_suppressions() { return "leak:libx265"; }

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

} // namespace
} // namespace kelvara
