#include "cli/PictureEncoder.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <jpeglib.h>
#include <png.h>

namespace kelvara::cli {

namespace {

constexpr int quality = 90;

struct JpegError {
    jpeg_error_mgr manager{}; // first, so that the library's pointer is also ours
    std::jmp_buf jump{};
};

void jumpOut(j_common_ptr state) { std::longjmp(reinterpret_cast<JpegError*>(state->err)->jump, 1); }

/// Apart from its caller, because an error jumps over it: it owns nothing.
bool compress(const Bitmap& picture, jpeg_compress_struct& state, JpegError& error, unsigned char*& bytes,
              unsigned long& size) {
    if (setjmp(error.jump) != 0) return false;
    jpeg_create_compress(&state);
    jpeg_mem_dest(&state, &bytes, &size);
    state.image_width = static_cast<JDIMENSION>(picture.width());
    state.image_height = static_cast<JDIMENSION>(picture.height());
    state.input_components = 4;
    state.in_color_space = JCS_EXT_BGRX;
    jpeg_set_defaults(&state);
    jpeg_set_quality(&state, quality, TRUE);
    state.optimize_coding = TRUE;
    jpeg_start_compress(&state, TRUE);
    const auto& icc = picture.profile()->icc();
    jpeg_write_icc_profile(&state, icc.data(), static_cast<unsigned>(icc.size()));
    while (state.next_scanline < state.image_height) {
        // The library's pointer is not const, but only read.
        auto* row = const_cast<JSAMPROW>(picture.row(static_cast<int>(state.next_scanline)).data());
        jpeg_write_scanlines(&state, &row, 1);
    }
    jpeg_finish_compress(&state);
    return true;
}

} // namespace

std::optional<std::string> encodedJPEG(const Bitmap& picture) {
    jpeg_compress_struct state{};
    JpegError error;
    state.err = jpeg_std_error(&error.manager);
    error.manager.error_exit = jumpOut;
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    std::optional<std::string> result;
    if (compress(picture, state, error, bytes, size))
        result.emplace(reinterpret_cast<const char*>(bytes), size);
    jpeg_destroy_compress(&state);
    std::free(bytes); // the library's allocation
    return result;
}

std::optional<std::string> encodedPNG(const Bitmap& picture) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width());
    image.height = static_cast<png_uint_32>(picture.height());
    image.format = PNG_FORMAT_BGR;
    std::vector<std::uint8_t> samples;
    samples.reserve(PNG_IMAGE_SIZE(image));
    for (int y = 0; y < picture.height(); ++y) {
        const auto row = picture.row(y);
        for (std::size_t i = 0; i + 3 < row.size(); i += 4) {
            samples.insert(samples.end(), row.begin() + static_cast<std::ptrdiff_t>(i),
                           row.begin() + static_cast<std::ptrdiff_t>(i + 3));
        }
    }
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string bytes(size, '\0');
    if (png_image_write_to_memory(&image, bytes.data(), &size, 0, samples.data(), 0, nullptr) == 0)
        return std::nullopt;
    bytes.resize(size);
    return bytes;
}

} // namespace kelvara::cli
