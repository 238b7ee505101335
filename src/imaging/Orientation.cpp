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

/// In squares, because a quarter turn walks the source down its columns: a square's lines stay in the cache.
template <std::size_t pixelBytes>
bool turn(const Bitmap& source, Bitmap& result, const Walk& path, const std::stop_token& stop) {
    constexpr std::ptrdiff_t step = pixelBytes;
    constexpr int side = 64;
    for (int top = 0; top < result.height(); top += side) {
        if (stop.stop_requested()) return false;
        const int bottom = std::min(top + side, result.height());
        for (int left = 0; left < result.width(); left += side) {
            const int end = std::min(left + side, result.width());
            for (int y = top; y < bottom; ++y) {
                auto* to = result.row(y).data() + left * step;
                const auto* from = source.data() + (path.start + y * path.down + left * path.right) * step;
                for (int x = left; x < end; ++x, to += step, from += path.right * step)
                    std::memcpy(to, from, pixelBytes);
            }
        }
    }
    return true;
}

} // namespace

BitmapPtr turnedUpright(BitmapPtr bitmap, Orientation orientation, const std::stop_token& stop) {
    if (!bitmap || orientation.isUpright()) return bitmap;
    const auto format = bitmap->format();
    auto result = Bitmap::create(orientation.applied(bitmap->size()), bitmap->profile(), format);
    if (!result) return nullptr;
    const auto path = walk(orientation, bitmap->size());
    const bool isWhole = format == PixelFormat::bgrx8
                             ? turn<bytesPerPixel(PixelFormat::bgrx8)>(*bitmap, *result, path, stop)
                             : turn<bytesPerPixel(PixelFormat::bgrx16)>(*bitmap, *result, path, stop);
    if (!isWhole) return nullptr;
    return result;
}

} // namespace kelvara
