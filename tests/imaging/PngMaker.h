#pragma once

#include "support/JpegMaker.h"

#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <png.h>

namespace kelvara {

/// A PNG to be made. `paint` gives red, green, blue and opacity in 16 bits, of which the file keeps what its
/// kind can hold; a palette's index is the pixel's quarter.
struct PngRecipe {
    using Pixel = std::array<std::uint16_t, 4>;

    PixelSize size{64, 48};
    int colorType = PNG_COLOR_TYPE_RGB;
    int depth = 8;
    bool isInterlaced = false;
    std::function<Pixel(int x, int y)> paint = [](int, int) { return Pixel{32896, 32896, 32896, 65535}; };
    std::function<void(png_structp, png_infop)> describe{};    ///< Sets what stands before the pixels.
    std::vector<std::pair<std::string, Bytes>> chunksBefore{}; ///< Written as they are.
    std::vector<std::pair<std::string, Bytes>> chunksAfter{};
};

inline Bytes pngRow(const PngRecipe& recipe, int y) {
    const bool hasAlpha = (recipe.colorType & PNG_COLOR_MASK_ALPHA) != 0;
    const bool hasPalette = recipe.colorType == PNG_COLOR_TYPE_PALETTE;
    const std::size_t colors = (recipe.colorType & PNG_COLOR_MASK_COLOR) != 0 && !hasPalette ? 3 : 1;
    Bytes row;
    unsigned bits = 0;
    unsigned pending = 0;
    const auto add = [&](unsigned value) {
        if (recipe.depth == 16) row.push_back(static_cast<std::uint8_t>(value >> 8));
        const auto depth = static_cast<unsigned>(std::min(recipe.depth, 8));
        pending = pending << depth | (value & ((1U << depth) - 1));
        if ((bits += depth) == 8) {
            row.push_back(static_cast<std::uint8_t>(pending));
            bits = pending = 0;
        }
    };
    for (int x = 0; x < recipe.size.width; ++x) {
        const auto pixel = recipe.paint(x, y);
        const auto shift = static_cast<unsigned>(16 - recipe.depth);
        if (hasPalette) {
            add((x < recipe.size.width / 2 ? 0U : 1U) + (y < recipe.size.height / 2 ? 0U : 2U));
            continue;
        }
        for (std::size_t c = 0; c < colors; ++c) add(static_cast<unsigned>(pixel[c]) >> shift);
        if (hasAlpha) add(static_cast<unsigned>(pixel[3]) >> shift);
    }
    if (bits > 0) row.push_back(static_cast<std::uint8_t>(pending << (8 - bits)));
    return row;
}

inline Bytes makePng(const PngRecipe& recipe) {
    Bytes result;
    auto* png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    auto* info = png_create_info_struct(png);
    png_set_write_fn(
        png, &result,
        [](png_structp state, png_bytep bytes, std::size_t count) {
            auto* to = static_cast<Bytes*>(png_get_io_ptr(state));
            to->insert(to->end(), bytes, bytes + count);
        },
        nullptr);
    png_set_IHDR(png, info, static_cast<png_uint_32>(recipe.size.width),
                 static_cast<png_uint_32>(recipe.size.height), recipe.depth, recipe.colorType,
                 recipe.isInterlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    if (recipe.describe) recipe.describe(png, info);
    png_write_info(png, info);
    const auto writeChunks = [png](const auto& chunks) {
        for (const auto& [name, data] : chunks)
            png_write_chunk(png, reinterpret_cast<png_const_bytep>(name.data()), data.data(), data.size());
    };
    writeChunks(recipe.chunksBefore);
    std::vector<Bytes> rows;
    std::vector<png_bytep> pointers;
    for (int y = 0; y < recipe.size.height; ++y) rows.push_back(pngRow(recipe, y));
    for (auto& row : rows) pointers.push_back(row.data());
    png_write_image(png, pointers.data());
    writeChunks(recipe.chunksAfter);
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return result;
}

} // namespace kelvara
