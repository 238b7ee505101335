#include "imaging/Orientation.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kelvara {
namespace {

/// Where the source walks while the result is filled row by row.
struct Walk {
    std::ptrdiff_t start; // source pixel of the result's first
    std::ptrdiff_t right; // step for one pixel to the right in the result
    std::ptrdiff_t down;
};

Walk walk(Orientation orientation, PixelSize source) {
    const std::ptrdiff_t w = source.width;
    const std::ptrdiff_t h = source.height;
    switch (orientation.exif()) {
    case 2:
        return {w - 1, -1, w};
    case 3:
        return {w * h - 1, -1, -w};
    case 4:
        return {w * (h - 1), 1, -w};
    case 5:
        return {0, w, 1};
    case 6:
        return {w * (h - 1), -w, 1};
    case 7:
        return {w * h - 1, -w, -1};
    case 8:
        return {w - 1, w, -1};
    default:
        return {0, 1, w};
    }
}

} // namespace

BitmapPtr turnedUpright(BitmapPtr bitmap, Orientation orientation, const std::stop_token& stop) {
    if (!bitmap || orientation.isUpright()) return bitmap;
    auto result = Bitmap::create(orientation.applied(bitmap->size()), bitmap->profile());
    if (!result) return nullptr;
    const auto path = walk(orientation, bitmap->size());
    // In squares, because a quarter turn walks the source down its columns: a square's lines stay in the
    // cache.
    constexpr int side = 64;
    for (int top = 0; top < result->height(); top += side) {
        if (stop.stop_requested()) return nullptr;
        const int bottom = std::min(top + side, result->height());
        for (int left = 0; left < result->width(); left += side) {
            const int end = std::min(left + side, result->width());
            for (int y = top; y < bottom; ++y) {
                auto* to = result->row(y).data() + static_cast<std::size_t>(left) * 4;
                const auto* from = bitmap->data() + (path.start + y * path.down + left * path.right) * 4;
                for (int x = left; x < end; ++x, to += 4, from += path.right * 4) std::memcpy(to, from, 4);
            }
        }
    }
    return result;
}

} // namespace kelvara
