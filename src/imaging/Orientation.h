#pragma once

#include "imaging/Bitmap.h"

#include <stop_token>

namespace kelvara {

/// How stored pixels are to be turned, as EXIF numbers it: 1 upright, 2 mirrored, 3 half a turn, 4 upside
/// down mirrored, 5 transposed, 6 a quarter clockwise, 7 transposed across the other diagonal, 8 a quarter
/// counter-clockwise.
class Orientation {
public:
    constexpr Orientation() = default;
    /// Numbers other than 1 to 8 mean upright.
    explicit constexpr Orientation(int exif) : m_exif{exif >= 1 && exif <= 8 ? exif : 1} {}

    [[nodiscard]] constexpr int exif() const { return m_exif; }
    [[nodiscard]] constexpr bool isUpright() const { return m_exif == 1; }
    /// Whether width and height change places.
    [[nodiscard]] constexpr bool swapsSides() const { return m_exif >= 5; }
    [[nodiscard]] constexpr PixelSize applied(PixelSize size) const {
        return swapsSides() ? PixelSize{size.height, size.width} : size;
    }

    friend constexpr bool operator==(Orientation, Orientation) = default;

private:
    int m_exif = 1;
};

/// The picture turned upright; `bitmap` itself when it is. Null when memory is short or `stop` was requested.
[[nodiscard]] BitmapPtr turnedUpright(BitmapPtr bitmap, Orientation orientation, const std::stop_token& stop);

} // namespace kelvara
