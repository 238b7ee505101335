#include "presets/Vignette.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "presets/Vignette.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kelvara {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// How far along the gradient pixels are, 0 to `strength`: the first at `x` from the centre in pixels of the
/// square, the next ones `step` further on each, all `y` below it.
void gradient(float x, float step, float y, float inner, float perRadius, float strength, std::size_t count,
              float* to) {
    const hn::ScalableTag<float> d;
    const auto y2 = hn::Set(d, y * y);
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const auto across =
            hn::Add(hn::Set(d, x), hn::Mul(hn::Iota(d, static_cast<float>(i)), hn::Set(d, step)));
        const auto radius = hn::Sqrt(hn::Add(hn::Mul(across, across), y2));
        const auto share = hn::Mul(hn::Sub(radius, hn::Set(d, inner)), hn::Set(d, perRadius));
        const auto clamped = hn::Min(hn::Max(share, hn::Zero(d)), hn::Set(d, 1));
        hn::StoreU(hn::Mul(clamped, hn::Set(d, strength)), d, to + i);
    }
}

} // namespace HWY_NAMESPACE
} // namespace kelvara
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kelvara {

HWY_EXPORT(gradient);

Vignette::Vignette(const PresetLook::Vignette& vignette, PixelSize size)
    : m_centreX{static_cast<float>(size.width) / 2}, m_centreY{static_cast<float>(size.height) / 2},
      m_horizontalScale{static_cast<float>(size.height) / static_cast<float>(size.width)},
      m_strength{static_cast<float>(std::min(1.0, std::abs(vignette.amount) * 0.85))}, m_darkens{
                                                                                           vignette.amount <
                                                                                           0} {
    const double radius = size.height * 0.5 * std::numbers::sqrt2;
    const double middle = vignette.midpoint * 0.6 + 0.25;
    constexpr double farthest = 1e9; // what settings beyond all measure come to
    const auto limited = [=](double r) { return std::clamp(r, -farthest, farthest); };
    const double inner = limited((1 - vignette.feather * 0.6) * middle * radius);
    const double outer = limited((middle * (1 + vignette.feather * 0.6) + 0.15) * radius);
    m_inner = static_cast<float>(inner);
    m_perRadius = static_cast<float>(1 / (std::max(outer, inner + 1) - inner));
}

void Vignette::fill(int y, int x, std::size_t count, float* factors, float* summands) const {
    const float across = (static_cast<float>(x) + 0.5F - m_centreX) * m_horizontalScale;
    const float down = static_cast<float>(y) + 0.5F - m_centreY;
    HWY_DYNAMIC_DISPATCH(gradient)
    (across, m_horizontalScale, down, m_inner, m_perRadius, m_strength, count, summands);
    std::transform(summands, summands + count, factors, [](float share) { return 1 - share; });
    if (m_darkens) std::fill_n(summands, count, 0.0F);
}

} // namespace kelvara
#endif
