#include "samplecard/JPEG.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <jpeglib.h>
#include <memory>
#include <stdexcept>
#include <vector>

namespace kelvara::samplecard {
namespace {

[[noreturn]] void raise(j_common_ptr jpeg) {
    std::array<char, JMSG_LENGTH_MAX> message{};
    jpeg->err->format_message(jpeg, message.data());
    throw std::runtime_error(message.data());
}

/// Owns the encoder and what it writes, also when a callback throws.
class Compressor {
public:
    Compressor() {
        state.err = jpeg_std_error(&m_errors);
        m_errors.error_exit = raise;
        jpeg_create_compress(&state);
        jpeg_mem_dest(&state, &m_bytes, &m_size);
    }
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;
    ~Compressor() {
        jpeg_destroy_compress(&state);
        std::free(m_bytes);
    }

    std::string finished() {
        jpeg_finish_compress(&state);
        return {reinterpret_cast<const char*>(m_bytes), m_size};
    }

    jpeg_compress_struct state{};

private:
    jpeg_error_mgr m_errors{};
    unsigned char* m_bytes = nullptr;
    unsigned long m_size = 0;
};

void segment(jpeg_compress_struct& jpeg, int marker, const std::string& bytes) {
    jpeg_write_marker(&jpeg, marker, reinterpret_cast<const JOCTET*>(bytes.data()),
                      static_cast<unsigned>(bytes.size()));
}

std::uint8_t eightBits(std::uint32_t sample) {
    return static_cast<std::uint8_t>((sample * 255 + 32767) / 65535);
}

/// The inks of one pixel, each as much missing ink as there is light: Adobe's inverted form.
void separate(const std::uint16_t* pixel, std::uint8_t* inks) {
    const int brightest = std::max({pixel[0], pixel[1], pixel[2]});
    for (int channel = 0; channel < 3; ++channel)
        inks[channel] =
            brightest == 0 ? std::uint8_t{255} : static_cast<std::uint8_t>(pixel[channel] * 255 / brightest);
    inks[3] = eightBits(static_cast<std::uint32_t>(brightest));
}

void fillRow(JPEGOptions::Components components, const std::uint16_t* samples, std::vector<std::uint8_t>& row,
             int width) {
    switch (components) {
    case JPEGOptions::Components::colour:
        for (std::size_t i = 0; i < row.size(); ++i) row[i] = eightBits(samples[i]);
        break;
    case JPEGOptions::Components::grey:
        for (int x = 0; x < width; ++x, samples += 3)
            row[static_cast<std::size_t>(x)] =
                eightBits((samples[0] * 13933U + samples[1] * 46871U + samples[2] * 4732U) >> 16);
        break;
    case JPEGOptions::Components::cmyk:
        for (int x = 0; x < width; ++x, samples += 3)
            separate(samples, &row[static_cast<std::size_t>(x) * 4]);
        break;
    }
}

void configure(jpeg_compress_struct& jpeg, const JPEGOptions& options) {
    const bool grey = options.components == JPEGOptions::Components::grey;
    const bool cmyk = options.components == JPEGOptions::Components::cmyk;
    jpeg.input_components = grey ? 1 : cmyk ? 4 : 3;
    jpeg.in_color_space = grey ? JCS_GRAYSCALE : cmyk ? JCS_CMYK : JCS_RGB;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, options.quality, TRUE);
    if (options.fullChroma && !grey && !cmyk)
        jpeg.comp_info[0].h_samp_factor = jpeg.comp_info[0].v_samp_factor = 1;
    if (options.progressive) jpeg_simple_progression(&jpeg);
    // A camera's file has an EXIF segment instead of a JFIF one.
    jpeg.write_JFIF_header = options.exif.empty() && !cmyk ? TRUE : FALSE;
    jpeg.write_Adobe_marker = cmyk ? TRUE : FALSE;
}

} // namespace

std::string encodeJPEG(const Picture& picture, const JPEGOptions& options) {
    Compressor compressor;
    jpeg_compress_struct& jpeg = compressor.state;
    jpeg.image_width = static_cast<JDIMENSION>(picture.width);
    jpeg.image_height = static_cast<JDIMENSION>(picture.height);
    configure(jpeg, options);
    jpeg_start_compress(&jpeg, TRUE);
    if (!options.exif.empty()) segment(jpeg, JPEG_APP0 + 1, std::string{"Exif\0\0", 6} + options.exif);
    if (options.embedsProfile && options.components == JPEGOptions::Components::colour) {
        const std::string profile = profileBytes(options.colours);
        jpeg_write_icc_profile(&jpeg, reinterpret_cast<const JOCTET*>(profile.data()),
                               static_cast<unsigned>(profile.size()));
    }
    std::vector<std::uint16_t> converted;
    if (options.colours != ColourProfile::sRGB) converted = samplesIn(options.colours, picture);
    const std::uint16_t* samples = converted.empty() ? picture.samples.data() : converted.data();
    const auto width = static_cast<std::size_t>(picture.width);
    std::vector<std::uint8_t> row(width * static_cast<std::size_t>(jpeg.input_components));
    for (int y = 0; y < picture.height; ++y, samples += width * 3) {
        fillRow(options.components, samples, row, picture.width);
        JSAMPROW rows = row.data();
        jpeg_write_scanlines(&jpeg, &rows, 1);
    }
    return compressor.finished();
}

std::string photoJPEG(const Picture& upright, const Shot& shot, JPEGOptions options) {
    const auto thumbnailOf = [&](const Picture& stored) {
        JPEGOptions small;
        small.quality = 82;
        small.colours = options.colours;
        small.embedsProfile = false;
        const bool portrait = stored.height > stored.width;
        return encodeJPEG(letterboxed(scaledTo(stored, 640), portrait ? 120 : 160, portrait ? 160 : 120),
                          small);
    };
    const auto written = [&](const Picture& stored) {
        options.exif = exifBlock(shot, stored.width, stored.height, thumbnailOf(stored));
        return encodeJPEG(stored, options);
    };
    return shot.orientation == 1 ? written(upright) : written(storedWith(upright, shot.orientation));
}

} // namespace kelvara::samplecard
