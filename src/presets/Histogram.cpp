#include "presets/Histogram.h"

#include "imaging/AreaScaler.h"
#include "imaging/ColorTransform.h"

#include <algorithm>
#include <cstring>

namespace kelvara {

namespace {

PixelSize sampledSize(PixelSize size, int sampleSize) {
    const double scale = std::min(1.0, double(sampleSize) / size.longestSide());
    return {std::max(1, static_cast<int>(size.width * scale)),
            std::max(1, static_cast<int>(size.height * scale))};
}

BitmapPtr sampled(const BitmapPtr& image, int sampleSize) {
    const auto size = sampledSize(image->size(), sampleSize);
    BitmapPtr sample = image;
    if (size != image->size()) {
        sample = collectRows(
            image->size(), size, image->profile(), {},
            [&](int y, std::uint8_t* row) {
                const auto from = image->row(y);
                std::memcpy(row, from.data(),
                            bytesPerPixel(image->format()) * static_cast<std::size_t>(image->width()));
                return true;
            },
            image->format());
    }
    return sample ? converted(sample, sample->profile(), PixelFormat::bgrx8, {}) : nullptr;
}

} // namespace

std::optional<Histogram> Histogram::of(const BitmapPtr& image, int sampleSize) {
    const auto sample = image ? sampled(image, sampleSize) : nullptr;
    if (!sample) return std::nullopt;
    Histogram histogram;
    for (int y = 0; y < sample->height(); ++y) {
        const auto* pixel = sample->row(y).data();
        for (int x = 0; x < sample->width(); ++x, pixel += bytesPerPixel(PixelFormat::bgrx8)) {
            const unsigned b = pixel[0];
            const unsigned g = pixel[1];
            const unsigned r = pixel[2];
            ++histogram.red[r];
            ++histogram.green[g];
            ++histogram.blue[b];
            ++histogram.luminance[(77 * r + 150 * g + 29 * b) / 256];
        }
    }
    const auto pixels = static_cast<double>(sample->size().pixels());
    for (auto* levels : {&histogram.red, &histogram.green, &histogram.blue, &histogram.luminance}) {
        for (auto& level : *levels) level /= pixels;
    }
    return histogram;
}

} // namespace kelvara
