#pragma once

#include "samplecard/Picture.h"

#include <cmath>
#include <cstdio>
#include <exiv2/exiv2.hpp>
#include <jpeglib.h>
#include <libheif/heif.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace kelvara::samplecard {

/// What an independent reader makes of a file: 8-bit samples, interleaved.
struct Decoded {
    int width = 0;
    int height = 0;
    int components = 0;
    std::vector<std::uint8_t> samples;
    bool isProgressive = false;
    bool hasAdobeMarker = false;

    [[nodiscard]] int at(int x, int y, int component) const {
        return samples[static_cast<std::size_t>((y * width + x) * components + component)];
    }
};

inline Decoded decodeJPEG(const std::string& bytes) {
    jpeg_decompress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg.err = jpeg_std_error(&errors);
    errors.error_exit = [](j_common_ptr) { throw std::runtime_error("not a JPEG"); };
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
    jpeg_read_header(&jpeg, TRUE);
    jpeg_start_decompress(&jpeg);
    Decoded decoded{static_cast<int>(jpeg.output_width),
                    static_cast<int>(jpeg.output_height),
                    jpeg.output_components,
                    {},
                    false,
                    false};
    decoded.isProgressive = jpeg.progressive_mode != FALSE;
    decoded.hasAdobeMarker = jpeg.saw_Adobe_marker != FALSE;
    const auto stride = static_cast<std::size_t>(decoded.width * decoded.components);
    decoded.samples.resize(stride * static_cast<std::size_t>(decoded.height));
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW row = &decoded.samples[jpeg.output_scanline * stride];
        jpeg_read_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
    return decoded;
}

/// The metadata of a file in memory.
inline Exiv2::Image::AutoPtr metadataOf(const std::string& bytes) {
    Exiv2::enableBMFF(true);
    auto image = Exiv2::ImageFactory::open(reinterpret_cast<const Exiv2::byte*>(bytes.data()),
                                           static_cast<long>(bytes.size()));
    image->readMetadata();
    return image;
}

inline std::string exifOf(const Exiv2::ExifData& exif, const char* key) {
    const auto found = exif.findKey(Exiv2::ExifKey{key});
    return found == exif.end() ? std::string{} : found->toString();
}
inline std::string exifOf(const Exiv2::Image& image, const char* key) {
    return exifOf(image.exifData(), key);
}

/// The EXIF item of a HEIC; Exiv2 does not find it in the smallest files by itself.
inline Exiv2::ExifData exifOfHEIC(const std::string& bytes) {
    heif_context* context = heif_context_alloc();
    heif_image_handle* primary = nullptr;
    Exiv2::ExifData exif;
    if (heif_context_read_from_memory(context, bytes.data(), bytes.size(), nullptr).code == heif_error_Ok &&
        heif_context_get_primary_image_handle(context, &primary).code == heif_error_Ok) {
        heif_item_id block = 0;
        if (heif_image_handle_get_list_of_metadata_block_IDs(primary, "Exif", &block, 1) == 1) {
            std::vector<Exiv2::byte> data(heif_image_handle_get_metadata_size(primary, block));
            heif_image_handle_get_metadata(primary, block, data.data());
            // The first four bytes say how many follow them before the TIFF header.
            if (data.size() > 4)
                Exiv2::ExifParser::decode(exif, data.data() + 4, static_cast<std::uint32_t>(data.size() - 4));
        }
        heif_image_handle_release(primary);
    }
    heif_context_free(context);
    return exif;
}

/// Four flat quarters that no turn or mirroring maps onto themselves: red, green / blue, white; wider than
/// high.
inline Picture quarters(int width, int height) {
    Picture picture{width, height};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const bool right = x >= width / 2;
            const bool low = y >= height / 2;
            std::uint16_t* pixel = picture.at(x, y);
            pixel[0] = right == low ? 50000 : 9000;
            pixel[1] = right ? 50000 : 9000;
            pixel[2] = low ? 50000 : 9000;
        }
    }
    return picture;
}

/// How far the middles of the four quarters lie from those of `quarters`, at worst, in 8-bit steps.
inline int distanceFromQuarters(const Decoded& decoded) {
    const Picture wanted = quarters(decoded.width, decoded.height);
    int worst = 0;
    for (const int y : {decoded.height / 4, decoded.height * 3 / 4})
        for (const int x : {decoded.width / 4, decoded.width * 3 / 4})
            for (int channel = 0; channel < 3; ++channel)
                worst = std::max(worst, std::abs(decoded.at(x, y, channel) - wanted.at(x, y)[channel] / 257));
    return worst;
}

} // namespace kelvara::samplecard
