#include "presets/Grain.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#ifndef KELVARA_GRAIN_PLACE // this file is read once for every kind of processor
#define KELVARA_GRAIN_PLACE
namespace kelvara {
namespace {

/// A place on an axis of the lattice, which is counted from one before the picture's edge.
struct Place {
    std::uint32_t whole;
    float fraction;
};

} // namespace
} // namespace kelvara
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "presets/Grain.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kelvara {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// Random numbers from 0 to 1 (exclusive), one for each place of a lattice.
template <class D> HWY_INLINE auto noise(D d, hn::VFromD<hn::RebindToUnsigned<D>> x, std::uint32_t row) {
    const hn::RebindToUnsigned<D> du;
    auto h = hn::Add(hn::Mul(x, hn::Set(du, 0x9E3779B1U)), hn::Set(du, row * 0x85EBCA77U));
    h = hn::Mul(hn::Xor(h, hn::ShiftRight<16>(h)), hn::Set(du, 0x7FEB352DU));
    h = hn::Mul(hn::Xor(h, hn::ShiftRight<15>(h)), hn::Set(du, 0x846CA68BU));
    h = hn::Xor(h, hn::ShiftRight<16>(h));
    const auto whole = hn::ConvertTo(d, hn::BitCast(hn::RebindToSigned<D>{}, hn::ShiftRight<8>(h)));
    return hn::Mul(hn::Add(whole, hn::Set(d, 0.5F)), hn::Set(d, 1.0F / (1 << 24)));
}

/// Of pixels in a row that follow `start` at `step` each.
void addNoise(Place start, float step, Place row, float amount, std::size_t count, float* summands) {
    const hn::ScalableTag<float> d;
    const hn::RebindToSigned<decltype(d)> di;
    const hn::RebindToUnsigned<decltype(d)> du;
    HWY_ALIGN float lattice[Grain::mostPixels + 2 + 2 * hn::MaxLanes(d)];
    const auto places = static_cast<std::size_t>(start.fraction + step * static_cast<float>(count)) + 2;
    for (std::size_t i = 0; i < places; i += hn::Lanes(d)) {
        const auto x = hn::Iota(du, start.whole + static_cast<std::uint32_t>(i));
        const auto above = noise(d, x, row.whole);
        const auto below = noise(d, x, row.whole + 1);
        const auto value = hn::Add(above, hn::Mul(hn::Sub(below, above), hn::Set(d, row.fraction)));
        hn::Store(hn::Sub(hn::Mul(value, hn::Set(d, 2 * amount)), hn::Set(d, amount)), d, lattice + i);
    }
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const auto place = hn::Add(hn::Set(d, start.fraction),
                                   hn::Mul(hn::Iota(d, static_cast<float>(i)), hn::Set(d, step)));
        const auto whole = hn::Min(hn::ConvertTo(di, place), hn::Set(di, Grain::mostPixels));
        const auto left = hn::GatherIndex(d, lattice, whole);
        const auto right = hn::GatherIndex(d, lattice + 1, whole);
        const auto share = hn::Sub(place, hn::ConvertTo(d, whole));
        const auto value = hn::Add(left, hn::Mul(hn::Sub(right, left), share));
        hn::StoreU(hn::Add(hn::LoadU(d, summands + i), value), d, summands + i);
    }
}

} // namespace HWY_NAMESPACE
} // namespace kelvara
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kelvara {
namespace {

/// Of the middle of pixel `i`.
Place placeOf(int i, double size) {
    const double place = (i + 0.5) / size + 0.5;
    const double whole = std::floor(place);
    return {static_cast<std::uint32_t>(whole), static_cast<float>(place - whole)};
}

} // namespace

HWY_EXPORT(addNoise);

Grain::Grain(const PresetLook::Grain& grain, PixelSize size) {
    constexpr double most = 1000; // what settings beyond all measure come to
    const double pixels = std::max(0.0, (grain.size * 1.6 + 0.6) * size.longestSide() / 4000);
    m_size = std::max(1.0, pixels);
    m_amount = static_cast<float>(std::min(grain.amount * 0.14 * std::min(std::sqrt(pixels), 1.0), most));
}

void Grain::add(int y, int x, std::size_t count, float* summands) const {
    HWY_DYNAMIC_DISPATCH(addNoise)
    (placeOf(x, m_size), static_cast<float>(1 / m_size), placeOf(y, m_size), m_amount, count, summands);
}

} // namespace kelvara
#endif
