#include "presets/Histogram.h"

#include "imaging/ColorTransform.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kelvara {

namespace {

PixelSize sampledSize(PixelSize size, int sampleSize) {
    const double scale = std::min(1.0, double(sampleSize) / size.longestSide());
    return {std::max(1, static_cast<int>(size.width * scale)),
            std::max(1, static_cast<int>(size.height * scale))};
}

/// Along one axis, the two pixels that each of `to` samples takes: in the middles of the halves of what it
/// stands for.
std::vector<std::size_t> takenPixels(int from, int to) {
    std::vector<std::size_t> taken;
    for (std::int64_t i = 0; i < 2 * to; ++i)
        taken.push_back(static_cast<std::size_t>((2 * i + 1) * from / (4 * std::int64_t{to})));
    return taken;
}

/// Each pixel of `sample` is the mean of four of `image`. All of those it stands for would take much longer
/// to read, and their mean would hide small highlights.
template <typename Number> void takeSample(const Bitmap& image, Bitmap& sample) {
    const auto columns = takenPixels(image.width(), sample.width());
    const auto rows = takenPixels(image.height(), sample.height());
    const auto numbers = [&image](std::size_t y) {
        return reinterpret_cast<const Number*>(image.row(static_cast<int>(y)).data());
    };
    for (int y = 0; y < sample.height(); ++y) {
        const auto* upper = numbers(rows[static_cast<std::size_t>(y) * 2]);
        const auto* lower = numbers(rows[static_cast<std::size_t>(y) * 2 + 1]);
        auto* to = reinterpret_cast<Number*>(sample.row(y).data());
        for (std::size_t x = 0; x < columns.size(); x += 2) {
            const auto left = columns[x] * 4, right = columns[x + 1] * 4;
            for (std::size_t c = 0; c < 4; ++c) {
                const unsigned sum =
                    unsigned{upper[left + c]} + upper[right + c] + lower[left + c] + lower[right + c];
                *to++ = static_cast<Number>((sum + 2) / 4);
            }
        }
    }
}

BitmapPtr sampled(const Bitmap& image, int sampleSize) {
    auto sample = Bitmap::create(sampledSize(image.size(), sampleSize), image.profile(), image.format());
    if (!sample) return nullptr;
    if (image.format() == PixelFormat::bgrx8)
        takeSample<std::uint8_t>(image, *sample);
    else
        takeSample<std::uint16_t>(image, *sample);
    const auto profile = image.profile();
    return converted(std::move(sample), profile, PixelFormat::bgrx8, {});
}

} // namespace

std::optional<Histogram> Histogram::of(const BitmapPtr& image, int sampleSize) {
    const auto sample = image ? sampled(*image, sampleSize) : nullptr;
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
