#include "imaging/WeightedSums.h"

#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/WeightedSums.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kelvara {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using WeightedSums::Stretch;

template <typename Sample> void sumRows(std::span<const std::uint8_t* const> rows, const float* weights,
                                        float* sums, std::size_t samples) {
    const hn::CappedTag<float, 16> d;
    const hn::RebindToSigned<decltype(d)> di;
    const hn::Rebind<Sample, decltype(d)> ds;
    const auto lanes = hn::Lanes(d);
    const auto values = [&](const Sample* from)
                            HWY_ATTR { return hn::ConvertTo(d, hn::PromoteTo(di, hn::LoadU(ds, from))); };
    // Two sums at a time, as each waits for itself.
    for (std::size_t i = 0; i < samples; i += 2 * lanes) {
        auto sum = hn::Zero(d), next = sum;
        for (std::size_t k = 0; k < rows.size(); ++k) {
            const auto* row = reinterpret_cast<const Sample*>(rows[k]) + i;
            const auto weight = hn::Set(d, weights[k]);
            sum = hn::Add(sum, hn::Mul(values(row), weight));
            next = hn::Add(next, hn::Mul(values(row + lanes), weight));
        }
        hn::StoreU(sum, d, sums + i);
        hn::StoreU(next, d, sums + i + lanes);
    }
}

template <typename Sample> void sumPixels(const float* pixels, std::span<const Stretch> stretches,
                                          const float* weights, std::uint8_t* bytes) {
    const hn::CappedTag<float, 4> d; // lanes are numbers of one pixel
    const hn::RebindToSigned<decltype(d)> di;
    const hn::Rebind<Sample, decltype(d)> ds;
    auto* to = reinterpret_cast<Sample*>(bytes);
    for (const auto& stretch : stretches) {
        const auto* from = pixels + static_cast<std::size_t>(stretch.first) * 4;
        const auto* weight = weights + stretch.weights;
        for (std::size_t c = 0; c < 4; c += hn::Lanes(d)) {
            auto sum = hn::Set(d, 0.5F);
            for (int i = 0; i < stretch.count; ++i)
                sum = hn::Add(sum, hn::Mul(hn::LoadU(d, from + i * 4 + c), hn::Set(d, weight[i])));
            hn::StoreU(hn::DemoteTo(ds, hn::ConvertTo(di, sum)), ds, to + c); // cuts off what is beyond
        }
        to[3] = std::numeric_limits<Sample>::max();
        to += 4;
    }
}

void sumRows8(std::span<const std::uint8_t* const> rows, const float* weights, float* sums,
              std::size_t samples) {
    sumRows<std::uint8_t>(rows, weights, sums, samples);
}
void sumRows16(std::span<const std::uint8_t* const> rows, const float* weights, float* sums,
               std::size_t samples) {
    sumRows<std::uint16_t>(rows, weights, sums, samples);
}
void sumPixels8(const float* pixels, std::span<const Stretch> stretches, const float* weights,
                std::uint8_t* to) {
    sumPixels<std::uint8_t>(pixels, stretches, weights, to);
}
void sumPixels16(const float* pixels, std::span<const Stretch> stretches, const float* weights,
                 std::uint8_t* to) {
    sumPixels<std::uint16_t>(pixels, stretches, weights, to);
}

} // namespace HWY_NAMESPACE
} // namespace kelvara
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kelvara {

HWY_EXPORT(sumRows8);
HWY_EXPORT(sumRows16);
HWY_EXPORT(sumPixels8);
HWY_EXPORT(sumPixels16);

void WeightedSums::ofRows(PixelFormat format, std::span<const std::uint8_t* const> rows, const float* weights,
                          float* sums, std::size_t samples) {
    if (format == PixelFormat::bgrx8)
        HWY_DYNAMIC_DISPATCH(sumRows8)(rows, weights, sums, samples);
    else
        HWY_DYNAMIC_DISPATCH(sumRows16)(rows, weights, sums, samples);
}

void WeightedSums::ofPixels(const float* pixels, std::span<const Stretch> stretches, const float* weights,
                            PixelFormat format, std::uint8_t* to) {
    if (format == PixelFormat::bgrx8)
        HWY_DYNAMIC_DISPATCH(sumPixels8)(pixels, stretches, weights, to);
    else
        HWY_DYNAMIC_DISPATCH(sumPixels16)(pixels, stretches, weights, to);
}

} // namespace kelvara
#endif
