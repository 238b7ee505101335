#include "samplecard/HEIC.h"

#include "tools/Readers.h"

#include <gtest/gtest.h>
#include <libheif/heif.h>

namespace kelvara::samplecard {
namespace {

/// A file opened by the library; the handles live as long as it does.
struct Opened {
    explicit Opened(const std::string& bytes) : context{heif_context_alloc()} {
        if (heif_context_read_from_memory(context, bytes.data(), bytes.size(), nullptr).code !=
                heif_error_Ok ||
            heif_context_get_primary_image_handle(context, &primary).code != heif_error_Ok)
            throw std::runtime_error("not a HEIC");
    }
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;
    ~Opened() {
        heif_image_handle_release(primary);
        heif_context_free(context);
    }

    heif_context* context;
    heif_image_handle* primary = nullptr;
};

Decoded decode(heif_image_handle* handle) {
    heif_image* image = nullptr;
    const heif_error error =
        heif_decode_image(handle, &image, heif_colorspace_RGB, heif_chroma_interleaved_RGB, nullptr);
    if (error.code != heif_error_Ok) throw std::runtime_error(error.message);
    Decoded decoded{heif_image_get_width(image, heif_channel_interleaved),
                    heif_image_get_height(image, heif_channel_interleaved),
                    3,
                    {},
                    false,
                    false};
    int stride = 0;
    const std::uint8_t* plane = heif_image_get_plane_readonly(image, heif_channel_interleaved, &stride);
    for (int y = 0; y < decoded.height; ++y)
        decoded.samples.insert(decoded.samples.end(), plane + std::ptrdiff_t{y} * stride,
                               plane + std::ptrdiff_t{y} * stride + std::ptrdiff_t{decoded.width} * 3);
    heif_image_release(image);
    return decoded;
}

TEST(HEICTest, decodesInItsDepthWithExifAndThumbnail) {
    for (const int bits : {8, 10}) {
        HEICOptions options;
        options.bits = bits;
        options.thumbnailSide = 64;
        Shot shot;
        shot.iso = 800;
        const std::string bytes = encodeHEIC(quarters(192, 128), shot, options);
        const Opened file{bytes};
        EXPECT_EQ(heif_image_handle_get_luma_bits_per_pixel(file.primary), bits);
        EXPECT_LE(distanceFromQuarters(decode(file.primary)), 10);
        ASSERT_EQ(heif_image_handle_get_number_of_thumbnails(file.primary), 1);
        EXPECT_EQ(exifOf(exifOfHEIC(bytes), "Exif.Photo.ISOSpeedRatings"), "800");
    }
}

TEST(HEICTest, aRotationOfTheContainerMakesItUpright) {
    for (const int orientation : {3, 6, 8}) {
        Shot shot;
        shot.orientation = orientation;
        const Opened file{encodeHEIC(quarters(192, 128), shot, {})};
        const Decoded decoded = decode(file.primary);
        EXPECT_EQ(decoded.width, 192);
        EXPECT_EQ(decoded.height, 128);
        EXPECT_LE(distanceFromQuarters(decoded), 10) << orientation;
    }
}

} // namespace
} // namespace kelvara::samplecard
