#include "support/JpegMaker.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>

namespace kelvara {

Bytes makeJpeg(const JpegRecipe& recipe) {
    jpeg_error_mgr errors{};
    jpeg_compress_struct state{};
    state.err = jpeg_std_error(&errors);
    jpeg_create_compress(&state);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&state, &memory, &size);
    state.image_width = static_cast<JDIMENSION>(recipe.size.width);
    state.image_height = static_cast<JDIMENSION>(recipe.size.height);
    state.input_components = recipe.components;
    state.in_color_space = recipe.components == 1   ? JCS_GRAYSCALE
                           : recipe.components == 4 ? JCS_CMYK
                                                    : JCS_RGB;
    jpeg_set_defaults(&state);
    jpeg_set_quality(&state, recipe.quality, TRUE);
    for (int i = 0; i < state.num_components; ++i)
        state.comp_info[i].h_samp_factor = state.comp_info[i].v_samp_factor = 1;
    if (recipe.isProgressive) jpeg_simple_progression(&state);
    jpeg_start_compress(&state, TRUE);
    if (!recipe.exif.empty()) {
        Bytes segment{'E', 'x', 'i', 'f', 0, 0};
        segment.insert(segment.end(), recipe.exif.begin(), recipe.exif.end());
        jpeg_write_marker(&state, JPEG_APP0 + 1, segment.data(), static_cast<unsigned>(segment.size()));
    }
    if (!recipe.icc.empty())
        jpeg_write_icc_profile(&state, recipe.icc.data(), static_cast<unsigned>(recipe.icc.size()));
    const auto components = static_cast<std::size_t>(recipe.components);
    Bytes row(components * static_cast<std::size_t>(recipe.size.width));
    for (int y = 0; y < recipe.size.height; ++y) {
        for (int x = 0; x < recipe.size.width; ++x) {
            const auto color = recipe.paint(x, y);
            for (std::size_t c = 0; c < components; ++c)
                row[static_cast<std::size_t>(x) * components + c] = color[c];
        }
        JSAMPROW line = row.data();
        jpeg_write_scanlines(&state, &line, 1);
    }
    jpeg_finish_compress(&state);
    jpeg_destroy_compress(&state);
    Bytes result{memory, memory + size};
    std::free(memory);
    return result;
}

} // namespace kelvara
