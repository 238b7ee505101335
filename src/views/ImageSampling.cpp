#include "views/ImageSampling.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kelvara {

namespace {

#if !defined(__SSE2__)
constexpr QRgb pairMask = 0x00ff00ff;
#endif
constexpr QRgb opaque = 0xff000000;

/// One axis of the way from frame pixels to the pixels of a level.
struct Axis {
    int begin = 0; ///< The frame pixels that the image covers.
    int end = 0;
    std::vector<int> source;  ///< For each of them the pixel to take, the first of two when smooth,
    std::vector<int> weights; ///< and the second one's weight of 256.

    [[nodiscard]] int firstSource() const { return source.front(); }
    [[nodiscard]] int lastSource() const { return source.back(); }
};

/// `shift`: the image's start in frame pixels, negative when it begins before the frame. `extent`: its length
/// in frame pixels. `length`: its length in pixels of the level.
Axis makeAxis(int frameLength, double shift, double extent, int length, bool isNearest) {
    Axis axis;
    const auto start = std::round(shift);
    axis.begin = static_cast<int>(std::clamp(start, 0.0, static_cast<double>(frameLength)));
    axis.end =
        static_cast<int>(std::clamp(std::round(shift + extent), 0.0, static_cast<double>(frameLength)));
    const auto ratio = length / extent;
    for (int i = axis.begin; i < axis.end; ++i) {
        const auto position = (i + 0.5 - start) * ratio;
        if (isNearest) {
            axis.source.push_back(std::clamp(static_cast<int>(position), 0, length - 1));
            continue;
        }
        const auto centred = std::clamp(position - 0.5, 0.0, static_cast<double>(length - 1));
        const auto first = std::min(static_cast<int>(centred), std::max(length - 2, 0));
        axis.source.push_back(first);
        axis.weights.push_back(length > 1 ? static_cast<int>(std::lround((centred - first) * 256)) : 0);
    }
    return axis;
}

const QRgb* row(const QImage& image, int y) { return reinterpret_cast<const QRgb*>(image.constScanLine(y)); }

#if defined(__SSE2__)
/// The pixels between the pairs at `in[source]`, weighted.
void blendPairs(const QRgb* in, const Axis& columns, QRgb* out) {
    const auto zero = _mm_setzero_si128();
    const auto first = columns.firstSource();
    for (std::size_t i = 0, count = columns.source.size(); i < count; ++i) {
        const auto* pair = reinterpret_cast<const __m128i*>(in + (columns.source[i] - first));
        const auto channels = _mm_unpacklo_epi8(_mm_loadl_epi64(pair), zero);
        const auto second = _mm_set1_epi16(static_cast<short>(columns.weights[i]));
        const auto weights = _mm_unpacklo_epi64(_mm_sub_epi16(_mm_set1_epi16(256), second), second);
        const auto products = _mm_mullo_epi16(channels, weights);
        const auto sums = _mm_srli_epi16(_mm_add_epi16(products, _mm_srli_si128(products, 8)), 8);
        out[i] = opaque | static_cast<QRgb>(_mm_cvtsi128_si32(_mm_packus_epi16(sums, sums)));
    }
}
#else
QRgb blended(QRgb a, QRgb b, QRgb weight) {
    const auto rest = 256 - weight;
    const auto even = ((a & pairMask) * rest + (b & pairMask) * weight) >> 8;
    const auto odd = ((a >> 8) & pairMask) * rest + ((b >> 8) & pairMask) * weight;
    return opaque | (even & pairMask) | (odd & ~pairMask);
}

/// The pixels between the pairs at `in[source]`, weighted.
void blendPairs(const QRgb* in, const Axis& columns, QRgb* out) {
    const auto first = columns.firstSource();
    for (std::size_t i = 0, count = columns.source.size(); i < count; ++i) {
        const auto* pair = in + (columns.source[i] - first);
        out[i] = blended(pair[0], pair[1], static_cast<QRgb>(columns.weights[i]));
    }
}
#endif

/// Bytes rather than pixels, which the compiler turns into wide arithmetic.
void blendRows(const QRgb* upper, const QRgb* lower, int weight, std::vector<QRgb>& out) {
    const auto* a = reinterpret_cast<const uchar*>(upper);
    const auto* b = reinterpret_cast<const uchar*>(lower);
    auto* result = reinterpret_cast<uchar*>(out.data());
    const auto second = static_cast<unsigned short>(weight);
    const auto first = static_cast<unsigned short>(256 - weight);
    for (std::size_t i = 0, count = out.size() * 4; i < count; ++i) {
        result[i] = static_cast<uchar>(static_cast<unsigned short>(a[i] * first + b[i] * second) >> 8);
    }
}

void drawNearest(QImage& frame, const QImage& level, const Axis& columns, const Axis& rows) {
    const auto first = columns.firstSource();
    const auto last = columns.lastSource() + 1;
    const auto count = columns.source.size();
    const bool isDirect = static_cast<std::size_t>(last - first) == count;
    for (int y = rows.begin; y < rows.end; ++y) {
        auto* out = reinterpret_cast<QRgb*>(frame.scanLine(y)) + columns.begin;
        const auto sourceRow = rows.source[static_cast<std::size_t>(y - rows.begin)];
        if (y > rows.begin && rows.source[static_cast<std::size_t>(y - rows.begin - 1)] == sourceRow) {
            std::memcpy(out, reinterpret_cast<const QRgb*>(frame.constScanLine(y - 1)) + columns.begin,
                        count * sizeof(QRgb));
            continue;
        }
        const auto* in = row(level, sourceRow) + first;
        if (isDirect) {
            std::memcpy(out, in, count * sizeof(QRgb));
        } else {
            for (std::size_t i = 0; i < count; ++i) out[i] = in[columns.source[i] - first];
        }
    }
}

void drawSmooth(QImage& frame, const QImage& level, const Axis& columns, const Axis& rows) {
    const auto first = columns.firstSource();
    const auto last = std::min(columns.lastSource() + 2, level.width());
    // One pixel more, so that the second pixel of the last pair may be read where there is none.
    std::vector<QRgb> blendedRow(static_cast<std::size_t>(last - first));
    std::vector<QRgb> padded(blendedRow.size() + 1);
    for (int y = rows.begin; y < rows.end; ++y) {
        const auto at = static_cast<std::size_t>(y - rows.begin);
        const auto* upper = row(level, rows.source[at]) + first;
        const auto* in = upper;
        if (rows.weights[at] != 0) {
            const auto* lower = row(level, std::min(rows.source[at] + 1, level.height() - 1)) + first;
            blendRows(upper, lower, rows.weights[at], blendedRow);
            in = blendedRow.data();
        }
        if (last - first < 2) { // a level of one pixel's width has no second pixel
            padded[0] = padded[1] = in[0];
            in = padded.data();
        }
        blendPairs(in, columns, reinterpret_cast<QRgb*>(frame.scanLine(y)) + columns.begin);
    }
}

void fill(QImage& frame, int y, int begin, int end, QRgb colour) {
    auto* line = reinterpret_cast<QRgb*>(frame.scanLine(y));
    std::fill(line + begin, line + end, colour);
}

} // namespace

void drawImage(QImage& frame, const ImagePyramid& image, const ImageView& view, QRgb background) {
    if (!view.shownSize.isPositive()) return frame.fill(background);
    const auto ownMagnification = view.magnification * view.shownSize.width / image.image().width();
    // At 100 % a smooth picture is the pixels themselves.
    const bool isNearest = view.isNearest || std::abs(ownMagnification - 1) < 1e-4;
    const auto& level = image.level(isNearest ? 0 : image.levelFor(ownMagnification));
    const auto columns = makeAxis(frame.width(), -view.origin.x * view.magnification,
                                  view.shownSize.width * view.magnification, level.width(), isNearest);
    const auto rows = makeAxis(frame.height(), -view.origin.y * view.magnification,
                               view.shownSize.height * view.magnification, level.height(), isNearest);
    if (columns.source.empty() || rows.source.empty()) return frame.fill(background);
    for (int y = 0; y < frame.height(); ++y) {
        const bool isOutside = y < rows.begin || y >= rows.end;
        fill(frame, y, 0, isOutside ? frame.width() : columns.begin, background);
        if (!isOutside) fill(frame, y, columns.end, frame.width(), background);
    }
    if (isNearest) {
        drawNearest(frame, level, columns, rows);
    } else {
        drawSmooth(frame, level, columns, rows);
    }
}

} // namespace kelvara
