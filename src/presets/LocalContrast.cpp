#include "presets/LocalContrast.h"

#include "imaging/RowSlices.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

#ifndef KELVARA_PRESETS_LOCAL_CONTRAST // this file is read once for every kind of processor
#define KELVARA_PRESETS_LOCAL_CONTRAST
namespace kelvara {
namespace {

/// What one pixel of a reduced copy is the sum of: some in a row of another, of which the outer ones may
/// count several times, as the edge does for what lies beyond it.
struct Stretch {
    std::size_t first, last;
    float firstTimes, lastTimes; ///< The first counts for both where it is the last.
};

} // namespace
} // namespace kelvara
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "presets/LocalContrast.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kelvara {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// Adds `times` of every number to `sums`.
template <typename Sample> void addSamples(const Sample* from, float times, float* sums, std::size_t count) {
    const hn::ScalableTag<float> d;
    std::size_t i = 0;
    for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
        auto values = hn::Undefined(d);
        if constexpr (std::is_same_v<Sample, float>) {
            values = hn::LoadU(d, from + i);
        } else {
            const hn::Rebind<Sample, decltype(d)> ds;
            const hn::RebindToSigned<decltype(d)> di;
            values = hn::ConvertTo(d, hn::PromoteTo(di, hn::LoadU(ds, from + i)));
        }
        hn::StoreU(hn::Add(hn::LoadU(d, sums + i), hn::Mul(values, hn::Set(d, times))), d, sums + i);
    }
    for (; i < count; ++i) sums[i] = sums[i] + static_cast<float>(from[i]) * times;
}
void add8(const std::uint8_t* from, float times, float* sums, std::size_t count) {
    addSamples(from, times, sums, count);
}
void add16(const std::uint16_t* from, float times, float* sums, std::size_t count) {
    addSamples(from, times, sums, count);
}
void addFloats(const float* from, float times, float* sums, std::size_t count) {
    addSamples(from, times, sums, count);
}

/// The sum of all rows, each times its weight.
void addRows(const float* const* rows, const float* weights, std::size_t rowCount, float* to,
             std::size_t count) {
    const hn::ScalableTag<float> d;
    const auto lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + 4 * lanes <= count; i += 4 * lanes) {
        auto a = hn::Zero(d), b = a, c = a, e = a;
        for (std::size_t k = 0; k < rowCount; ++k) {
            const auto* row = rows[k] + i;
            const auto weight = hn::Set(d, weights[k]);
            a = hn::Add(a, hn::Mul(hn::LoadU(d, row), weight));
            b = hn::Add(b, hn::Mul(hn::LoadU(d, row + lanes), weight));
            c = hn::Add(c, hn::Mul(hn::LoadU(d, row + 2 * lanes), weight));
            e = hn::Add(e, hn::Mul(hn::LoadU(d, row + 3 * lanes), weight));
        }
        hn::StoreU(a, d, to + i);
        hn::StoreU(b, d, to + i + lanes);
        hn::StoreU(c, d, to + i + 2 * lanes);
        hn::StoreU(e, d, to + i + 3 * lanes);
    }
    const hn::CappedTag<float, 4> d4; // what remains are whole pixels
    for (; i < count; i += hn::Lanes(d4)) {
        auto sum = hn::Zero(d4);
        for (std::size_t k = 0; k < rowCount; ++k)
            sum = hn::Add(sum, hn::Mul(hn::LoadU(d4, rows[k] + i), hn::Set(d4, weights[k])));
        hn::StoreU(sum, d4, to + i);
    }
}

/// The sum of the pixels of a stretch, times `scale`.
void addPixels(const float* row, const Stretch& stretch, float scale, float* to) {
    const hn::CappedTag<float, 4> d;
    for (std::size_t c = 0; c < 4; c += hn::Lanes(d)) {
        const auto* pixels = row + c;
        auto sum = hn::Mul(hn::LoadU(d, pixels + stretch.first * 4), hn::Set(d, stretch.firstTimes));
        for (auto i = stretch.first + 1; i < stretch.last; ++i)
            sum = hn::Add(sum, hn::LoadU(d, pixels + i * 4));
        if (stretch.first < stretch.last)
            sum =
                hn::Add(sum, hn::Mul(hn::LoadU(d, pixels + stretch.last * 4), hn::Set(d, stretch.lastTimes)));
        hn::StoreU(hn::Mul(sum, hn::Set(d, scale)), d, to + c);
    }
}

void addStretches(const float* row, const Stretch* stretches, std::size_t count, float scale, float* to) {
    for (std::size_t i = 0; i < count; ++i) addPixels(row, stretches[i], scale, to + i * 4);
}

void scalePixels(float* pixels, float scale, std::size_t count) {
    const hn::CappedTag<float, 4> d;
    for (std::size_t i = 0; i < count * 4; i += hn::Lanes(d))
        hn::StoreU(hn::Mul(hn::LoadU(d, pixels + i), hn::Set(d, scale)), d, pixels + i);
}

/// Subtracts from pixels what lies between those of a reduced `row`: `factor` of them to each, the first one
/// `phase` after its reduced pixel, with `shares` of the next.
void subtractStretched(const float* row, const float* shares, std::size_t factor, std::size_t phase,
                       float* pixels, std::size_t count) {
    const hn::CappedTag<float, 4> d;
    while (count > 0) {
        const auto size = std::min(factor - phase, count);
        for (std::size_t c = 0; c < 4; c += hn::Lanes(d)) {
            const auto here = hn::LoadU(d, row + c);
            const auto step = hn::Sub(hn::LoadU(d, row + c + 4), here);
            for (std::size_t i = 0; i < size; ++i) {
                auto* pixel = pixels + i * 4 + c;
                const auto value = hn::Add(here, hn::Mul(step, hn::Set(d, shares[phase + i])));
                hn::StoreU(hn::Sub(hn::LoadU(d, pixel), value), d, pixel);
            }
        }
        row += 4;
        pixels += size * 4;
        count -= size;
        phase = 0;
    }
}

} // namespace HWY_NAMESPACE
} // namespace kelvara
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kelvara {

HWY_EXPORT(add8);
HWY_EXPORT(add16);
HWY_EXPORT(addFloats);
HWY_EXPORT(addRows);
HWY_EXPORT(addStretches);
HWY_EXPORT(scalePixels);
HWY_EXPORT(subtractStretched);

namespace {

using Picture = std::unique_ptr<ReducedPicture>;

/// Pixels of a reduced copy that are worth a thread of their own.
constexpr std::int64_t fewestPixels = 1 << 14;

void addRow(const Bitmap& from, std::size_t y, float times, std::vector<float>& sums) {
    const auto row = static_cast<int>(y);
    if (from.format() == PixelFormat::bgrx8)
        HWY_DYNAMIC_DISPATCH(add8)(from.row(row).data(), times, sums.data(), sums.size());
    else
        HWY_DYNAMIC_DISPATCH(add16)(from.row16(row).data(), times, sums.data(), sums.size());
}
void addRow(const ReducedPicture& from, std::size_t y, float times, std::vector<float>& sums) {
    HWY_DYNAMIC_DISPATCH(addFloats)(from.row(static_cast<int>(y)), times, sums.data(), sums.size());
}

/// For an axis of `length` pixels with `border` more at either end, reduced by `factor`, with a new border.
std::vector<Stretch> stretches(int length, int border, int factor) {
    std::vector<Stretch> result;
    const int blocks = (length + factor - 1) / factor;
    for (int block = -ReducedPicture::border; block < blocks + ReducedPicture::border; ++block) {
        const std::int64_t begin = std::int64_t{block} * factor, end = begin + factor - 1;
        const auto first = std::clamp<std::int64_t>(begin, -border, length - 1 + border);
        const auto last = std::clamp<std::int64_t>(end, -border, length - 1 + border);
        const auto place = [border](std::int64_t i) { return static_cast<std::size_t>(i + border); };
        if (first == last)
            result.push_back({place(first), place(last), static_cast<float>(factor), 0});
        else
            result.push_back({place(first), place(last), static_cast<float>(first - begin + 1),
                              static_cast<float>(end - last + 1)});
    }
    return result;
}

/// The means of squares of `factor` pixels, times `scale`.
template <typename Source> Picture reduced(const Source& source, int border, int factor, float scale,
                                           std::int64_t pixelsOfSlice, const std::stop_token& stop) {
    const auto size = source.size();
    const auto blocks = [factor](int length) { return (length + factor - 1) / factor; };
    auto result = ReducedPicture::create({blocks(size.width), blocks(size.height)});
    if (!result) return nullptr;
    scale /= static_cast<float>(factor) * static_cast<float>(factor);
    const auto down = stretches(size.height, border, factor), across = stretches(size.width, border, factor);
    forRowSlices(
        result->rows(), size.pixels(),
        [&](int begin, int end) {
            std::vector<float> sums(static_cast<std::size_t>(size.width + 2 * border) * 4);
            for (int y = begin; y < end && !stop.stop_requested(); ++y) {
                std::ranges::fill(sums, 0.0F);
                const auto& [first, last, firstTimes, lastTimes] = down[static_cast<std::size_t>(y)];
                addRow(source, first, firstTimes, sums);
                for (auto i = first + 1; i < last; ++i) addRow(source, i, 1, sums);
                if (first < last) addRow(source, last, lastTimes, sums);
                HWY_DYNAMIC_DISPATCH(addStretches)
                (sums.data(), across.data(), across.size(), scale, result->row(y));
            }
        },
        pixelsOfSlice);
    if (stop.stop_requested()) return nullptr;
    return result;
}

/// From the middle to either side as far as it matters; their sum is one.
std::vector<float> gaussian(double sigma) {
    const int reach = std::max(1, static_cast<int>(std::ceil(sigma * 3.5)));
    std::vector<double> weights;
    double sum = 0;
    for (int i = -reach; i <= reach; ++i) {
        weights.push_back(std::exp(-0.5 * i * i / (sigma * sigma)));
        sum += weights.back();
    }
    std::vector<float> result(weights.size());
    std::ranges::transform(weights, result.begin(), [sum](double w) { return static_cast<float>(w / sum); });
    return result;
}

void blurAcross(const ReducedPicture& from, ReducedPicture& to, const std::vector<float>& weights, int begin,
                int end) {
    const auto reach = weights.size() / 2;
    std::vector<float> padded(from.rowFloats() + reach * 8);
    std::vector<const float*> shifted;
    for (std::size_t i = 0; i < weights.size(); ++i) shifted.push_back(padded.data() + i * 4);
    for (int y = begin; y < end; ++y) {
        const auto* row = from.row(y);
        std::copy_n(row, from.rowFloats(), padded.data() + reach * 4);
        for (std::size_t i = 0; i < reach; ++i) {
            std::copy_n(row, 4, padded.data() + i * 4);
            std::copy_n(row + from.rowFloats() - 4, 4, padded.data() + padded.size() - (i + 1) * 4);
        }
        HWY_DYNAMIC_DISPATCH(addRows)
        (shifted.data(), weights.data(), weights.size(), to.row(y), from.rowFloats());
    }
}

void blurDown(const ReducedPicture& from, ReducedPicture& to, const std::vector<float>& weights, int begin,
              int end) {
    const int reach = static_cast<int>(weights.size() / 2);
    std::vector<const float*> rows(weights.size());
    for (int y = begin; y < end; ++y) {
        for (int i = -reach; i <= reach; ++i)
            rows[static_cast<std::size_t>(i + reach)] = from.row(std::clamp(y + i, 0, from.rows() - 1));
        HWY_DYNAMIC_DISPATCH(addRows)
        (rows.data(), weights.data(), weights.size(), to.row(y), from.rowFloats());
    }
}

Picture blurred(const ReducedPicture& source, double sigma, const std::stop_token& stop) {
    const auto across = ReducedPicture::create(source.size());
    auto result = ReducedPicture::create(source.size());
    if (!across || !result) return nullptr;
    const auto weights = gaussian(sigma);
    const auto size = source.size();
    forRowSlices(
        source.rows(), size.pixels(),
        [&](int begin, int end) { blurAcross(source, *across, weights, begin, end); }, fewestPixels);
    if (stop.stop_requested()) return nullptr;
    forRowSlices(
        source.rows(), size.pixels(),
        [&](int begin, int end) { blurDown(*across, *result, weights, begin, end); }, fewestPixels);
    if (stop.stop_requested()) return nullptr;
    return result;
}

/// What a stage makes of the reduced copy itself. The border is to continue the outermost pixels of the large
/// picture, where `edgeShare` of the blur comes from the first reduced pixel and the rest from the border.
void sharpen(ReducedPicture& picture, const ReducedPicture& blurred, float amount, float edgeShare) {
    const auto sharpenRow = [&](int y) {
        const auto* soft = blurred.row(y);
        const auto* inside = blurred.row(std::clamp(y, 1, picture.rows() - 2));
        auto* row = picture.row(y);
        const auto sharpenPixel = [&](std::size_t at, std::size_t atInside) {
            for (std::size_t c = 0; c < 4; ++c) {
                const float edge = soft[at + c] + edgeShare * (inside[atInside + c] - soft[at + c]);
                row[at + c] += amount * (row[at + c] - edge);
            }
        };
        const auto last = picture.rowFloats() - 4;
        sharpenPixel(0, 4);
        for (std::size_t at = 4; at < last; at += 4) sharpenPixel(at, at);
        sharpenPixel(last, last - 4);
    };
    forRowSlices(
        picture.rows(), picture.size().pixels(),
        [&](int begin, int end) {
            for (int y = begin; y < end; ++y) sharpenRow(y);
        },
        fewestPixels);
}

/// Of the next reduced pixel in each of the `factor` pixels from the middle of one on.
std::vector<float> sharesOfNext(int factor) {
    std::vector<float> shares;
    const float first = factor % 2 == 0 ? 0.5F : 0;
    for (int i = 0; i < factor; ++i)
        shares.push_back((static_cast<float>(i) + first) / static_cast<float>(factor));
    return shares;
}

} // namespace

Picture ReducedPicture::create(PixelSize size) {
    Picture picture{new ReducedPicture{size}};
    const auto floats = picture->rowFloats() * static_cast<std::size_t>(picture->rows());
    picture->m_pixels.reset(new (std::nothrow) float[floats]);
    return picture->m_pixels ? std::move(picture) : nullptr;
}

std::optional<LocalContrast> LocalContrast::make(const Bitmap& source, std::span<const Stage> stages,
                                                 const std::stop_token& stop) {
    LocalContrast result;
    Picture picture; // reduced by `factor`
    int factor = 1;
    for (const auto& stage : stages) {
        const auto& [amount, radius] = stage;
        if (amount == 0 || radius < 0.5) continue;
        const auto wanted = static_cast<int>(std::ceil(std::max(1.0, radius * 0.125)));
        if (!picture) {
            const float scale = source.format() == PixelFormat::bgrx8 ? 1.0F / 255 : 1.0F / 65535;
            factor = wanted;
            picture = reduced(source, 0, factor, scale, 1 << 20, stop);
        } else if (const int step = (wanted + factor - 1) / factor; step > 1) {
            factor *= step;
            picture = reduced(*picture, ReducedPicture::border, step, 1, fewestPixels, stop);
        }
        if (!picture) return std::nullopt;
        // Reduction and what interpolates between the reduced pixels blur a little too.
        const double variance = radius / factor * (radius / factor) - (factor > 1 ? 0.25 : 0);
        auto soft = blurred(*picture, std::sqrt(variance), stop);
        if (!soft) return std::nullopt;
        const auto weight = static_cast<float>(amount);
        auto shares = sharesOfNext(factor);
        if (&stage != &stages.back())
            sharpen(*picture, *soft, weight,
                    factor == 1 ? 1 : shares[static_cast<std::size_t>(factor - factor / 2)]);
        result.m_sourceWeight *= 1 + weight;
        for (auto& layer : result.m_layers) layer.weight *= 1 + weight;
        result.m_layers.push_back({weight, factor, std::move(shares), std::move(soft)});
    }
    return result;
}

LocalContrast::Rows::Rows(const LocalContrast& contrast) : m_contrast{contrast} {
    for (const auto& layer : contrast.m_layers) m_rows.emplace_back(layer.blurred->rowFloats());
}

void LocalContrast::Rows::moveTo(int y) {
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const auto& layer = m_contrast.m_layers[i];
        const int after = y + layer.factor - layer.factor / 2; // the border's middle
        const auto share = layer.shares[static_cast<std::size_t>(after % layer.factor)];
        const int above = after / layer.factor;
        const std::array<const float*, 2> rows{layer.blurred->row(above), layer.blurred->row(above + 1)};
        const std::array<float, 2> weights{layer.weight * (1 - share), layer.weight * share};
        HWY_DYNAMIC_DISPATCH(addRows)
        (rows.data(), weights.data(), rows.size(), m_rows[i].data(), m_rows[i].size());
    }
}

void LocalContrast::Rows::apply(int x, std::size_t count, float* pixels) const {
    if (m_rows.empty()) return;
    HWY_DYNAMIC_DISPATCH(scalePixels)(pixels, m_contrast.m_sourceWeight, count);
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const auto& layer = m_contrast.m_layers[i];
        const auto after = static_cast<std::size_t>(x + layer.factor - layer.factor / 2);
        const auto factor = static_cast<std::size_t>(layer.factor);
        HWY_DYNAMIC_DISPATCH(subtractStretched)
        (m_rows[i].data() + after / factor * 4, layer.shares.data(), factor, after % factor, pixels, count);
    }
}

} // namespace kelvara
#endif
