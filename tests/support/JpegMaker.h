#pragma once

#include "imaging/Bitmap.h"

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

namespace kelvara {

using Bytes = std::vector<std::uint8_t>;

/// A JPEG to be made. Its pixels are what `paint` gives: grey, red-green-blue, or four inks by `components`.
struct JpegRecipe {
    PixelSize size{64, 48};
    int components = 3;
    std::function<std::array<std::uint8_t, 4>(int x, int y)> paint = [](int, int) {
        return std::array<std::uint8_t, 4>{128, 128, 128, 0};
    };
    Bytes exif{}; ///< A TIFF block.
    Bytes icc{};
    bool isProgressive = false;
    int quality = 95;
};

[[nodiscard]] Bytes makeJpeg(const JpegRecipe& recipe);

} // namespace kelvara
