#include "views/ImagePyramid.h"

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

const QRgb* row(const QImage& image, int y) { return reinterpret_cast<const QRgb*>(image.constScanLine(y)); }

QImage halved(const QImage& image, const std::stop_token& stop) {
    const auto width = image.width();
    const auto height = image.height();
    QImage half{(width + 1) / 2, (height + 1) / 2, QImage::Format_RGB32};
    if (half.isNull()) return {};
    for (int y = 0; y < half.height(); ++y) {
        if (y % 64 == 0 && stop.stop_requested()) return {};
        const auto* upper = row(image, 2 * y);
        const auto* lower = row(image, std::min(2 * y + 1, height - 1));
        auto* out = reinterpret_cast<QRgb*>(half.scanLine(y));
        for (int x = 0; x < width / 2; ++x) {
            out[x] = mean(upper[2 * x], upper[2 * x + 1], lower[2 * x], lower[2 * x + 1]);
        }
        if (width % 2 == 1)
            out[width / 2] = mean(upper[width - 1], upper[width - 1], lower[width - 1], lower[width - 1]);
    }
    return half;
}

} // namespace

std::shared_ptr<const ImagePyramid> ImagePyramid::build(const QImage& image, const std::stop_token& stop) {
    if (image.isNull()) return nullptr;
    assert(image.format() == QImage::Format_RGB32);
    std::vector<QImage> levels{image};
    while (std::max(levels.back().width(), levels.back().height()) > smallestSide) {
        auto next = halved(levels.back(), stop);
        if (next.isNull()) return nullptr;
        levels.push_back(std::move(next));
    }
    return std::shared_ptr<const ImagePyramid>{new ImagePyramid{std::move(levels)}};
}

int ImagePyramid::levelFor(double magnification) const {
    if (magnification >= 1 || magnification <= 0) return magnification <= 0 ? levels() - 1 : 0;
    return std::min(static_cast<int>(std::floor(std::log2(1 / magnification) + 1e-9)), levels() - 1);
}

} // namespace kelvara
