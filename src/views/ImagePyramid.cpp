#include "views/ImagePyramid.h"

#include "views/BitmapImage.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace kelvara {

namespace {

constexpr int smallestSide = 64;
constexpr QRgb pairMask = 0x00ff00ff;
constexpr QRgb opaque = 0xff000000;

/// The mean of four pixels, two channels at a time.
QRgb mean(QRgb a, QRgb b, QRgb c, QRgb d) {
    constexpr QRgb half = 0x00020002;
    const auto even = (a & pairMask) + (b & pairMask) + (c & pairMask) + (d & pairMask) + half;
    const auto odd =
        ((a >> 8) & pairMask) + ((b >> 8) & pairMask) + ((c >> 8) & pairMask) + ((d >> 8) & pairMask) + half;
    return opaque | ((even >> 2) & pairMask) | (((odd >> 2) & pairMask) << 8);
}

const QRgb* pixels(const Bitmap& bitmap, int y) {
    return reinterpret_cast<const QRgb*>(bitmap.row(y).data());
}

BitmapPtr halved(const Bitmap& bitmap, const std::stop_token& stop) {
    const auto width = bitmap.width();
    const auto height = bitmap.height();
    auto half = Bitmap::create({(width + 1) / 2, (height + 1) / 2}, bitmap.profile());
    if (half == nullptr) return nullptr;
    for (int y = 0; y < half->height(); ++y) {
        if (y % 64 == 0 && stop.stop_requested()) return nullptr;
        const auto* upper = pixels(bitmap, 2 * y);
        const auto* lower = pixels(bitmap, std::min(2 * y + 1, height - 1));
        auto* out = reinterpret_cast<QRgb*>(half->row(y).data());
        for (int x = 0; x < width / 2; ++x) {
            out[x] = mean(upper[2 * x], upper[2 * x + 1], lower[2 * x], lower[2 * x + 1]);
        }
        if (width % 2 == 1)
            out[width / 2] = mean(upper[width - 1], upper[width - 1], lower[width - 1], lower[width - 1]);
    }
    return half;
}

} // namespace

std::shared_ptr<const ImagePyramid> ImagePyramid::build(const BitmapPtr& bitmap,
                                                        const std::stop_token& stop) {
    if (bitmap == nullptr) return nullptr;
    assert(bitmap->format() == PixelFormat::bgrx8);
    std::vector<Level> levels{{bitmap, wrapped(bitmap)}};
    while (levels.back().bitmap->size().longestSide() > smallestSide) {
        const auto next = halved(*levels.back().bitmap, stop);
        if (next == nullptr) return nullptr;
        levels.push_back({next, wrapped(next)});
    }
    return std::shared_ptr<const ImagePyramid>{new ImagePyramid{std::move(levels)}};
}

int ImagePyramid::levelFor(double magnification) const {
    if (magnification >= 1 || magnification <= 0) return magnification <= 0 ? levels() - 1 : 0;
    return std::min(static_cast<int>(std::floor(std::log2(1 / magnification) + 1e-9)), levels() - 1);
}

} // namespace kelvara
