#pragma once

#include "imaging/Bitmap.h"

#include <cstdint>
#include <vector>

namespace kelvara {

/// The rows of a bitmap with another number of bits a channel. Fewer are dithered in a fixed pattern, so that
/// a gradient shows no steps.
class RowsInFormat {
public:
    /// `image` outlives it.
    RowsInFormat(const Bitmap& image, PixelFormat format);

    /// Pixels of the format, until the next call.
    [[nodiscard]] const std::uint8_t* row(int y);

private:
    const Bitmap& m_image;
    PixelFormat m_format;
    std::vector<std::uint8_t> m_line; // empty where the bitmap's own rows do
};

} // namespace kelvara
