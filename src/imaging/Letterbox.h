#pragma once

#include "imaging/Bitmap.h"

namespace kelvara {

/// A part of a bitmap.
struct PixelRectangle {
    int x = 0;
    int y = 0;
    PixelSize size;
};

/// Where in the middle of a preview a picture of the shape of `picture` lies; the rest are bars above and
/// below, or beside it. Empty when nothing is left.
[[nodiscard]] PixelRectangle pictureInside(PixelSize preview, PixelSize picture);

/// A copy of a part that lies inside. Null when the part is empty or memory is short.
[[nodiscard]] BitmapPtr cut(const Bitmap& bitmap, const PixelRectangle& part);

/// Whether nearly everything outside of `part` is black; of a bitmap of eight bits.
[[nodiscard]] bool hasBlackBars(const Bitmap& bitmap, const PixelRectangle& part);

} // namespace kelvara
