#include "presets/SourceSpace.h"

#include "imaging/MatrixProfile.h"

#include <algorithm>
#include <mutex>
#include <utility>

#ifndef KELVARA_PRESETS_SOURCE_SPACE // this file is read once for every kind of processor
#define KELVARA_PRESETS_SOURCE_SPACE
namespace kelvara {
namespace {

/// Of a table from 0 to 1, between whose entries the error is far below a step of 16 bits.
constexpr int tableSteps = 4096;

/// A way from one space to another, channel by channel.
struct Conversion {
    std::array<const float*, 3> light;
    std::array<const float*, 3> numbers;
    const float* matrix;
};

} // namespace
} // namespace kelvara
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "presets/SourceSpace.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kelvara {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

template <class D, class V> HWY_INLINE V clamped(D d, V value) {
    return hn::Min(hn::Max(value, hn::Zero(d)), hn::Set(d, 1));
}

/// `value` from 0 to 1.
template <class D, class V> HWY_INLINE V lookedUp(D d, const float* table, V value) {
    const hn::RebindToSigned<D> di;
    const auto place = hn::Mul(value, hn::Set(d, tableSteps));
    const auto step = hn::ConvertTo(di, place);
    const auto here = hn::GatherIndex(d, table, step);
    const auto next = hn::GatherIndex(d, table + 1, step);
    return hn::Add(here, hn::Mul(hn::Sub(next, here), hn::Sub(place, hn::ConvertTo(d, step))));
}

/// Adds `share` of what is in `beyond`, unless it is 0, and leaves there what the other space can't hold.
void convert(const Conversion& by, float* pixels, float* beyond, float share, std::size_t count) {
    const hn::ScalableTag<float> d;
    using V = hn::VFromD<decltype(d)>;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        V blue = hn::Undefined(d), green = blue, red = blue, fourth = blue;
        hn::LoadInterleaved4(d, pixels + i * 4, blue, green, red, fourth);
        blue = lookedUp(d, by.light[0], clamped(d, blue));
        green = lookedUp(d, by.light[1], clamped(d, green));
        red = lookedUp(d, by.light[2], clamped(d, red));
        if (share != 0) {
            V moreBlue = blue, moreGreen = blue, moreRed = blue;
            hn::LoadInterleaved4(d, beyond + i * 4, moreBlue, moreGreen, moreRed, fourth);
            blue = hn::Add(blue, hn::Mul(moreBlue, hn::Set(d, share)));
            green = hn::Add(green, hn::Mul(moreGreen, hn::Set(d, share)));
            red = hn::Add(red, hn::Mul(moreRed, hn::Set(d, share)));
        }
        const auto light = [&](std::size_t channel) {
            const auto* row = by.matrix + channel * 3;
            return hn::Add(hn::Add(hn::Mul(blue, hn::Set(d, row[0])), hn::Mul(green, hn::Set(d, row[1]))),
                           hn::Mul(red, hn::Set(d, row[2])));
        };
        const V b = light(0), g = light(1), r = light(2);
        const V heldB = clamped(d, b), heldG = clamped(d, g), heldR = clamped(d, r);
        hn::StoreInterleaved4(hn::Sub(b, heldB), hn::Sub(g, heldG), hn::Sub(r, heldR), fourth, d,
                              beyond + i * 4);
        hn::StoreInterleaved4(lookedUp(d, by.numbers[0], hn::Sqrt(heldB)),
                              lookedUp(d, by.numbers[1], hn::Sqrt(heldG)),
                              lookedUp(d, by.numbers[2], hn::Sqrt(heldR)), fourth, d, pixels + i * 4);
    }
}

} // namespace HWY_NAMESPACE
} // namespace kelvara
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kelvara {

HWY_EXPORT(convert);

namespace {

template <typename Of> std::vector<float> table(Of&& of) {
    std::vector<float> values;
    for (int i = 0; i <= tableSteps; ++i)
        values.push_back(of(static_cast<float>(i) / static_cast<float>(tableSteps)));
    values.push_back(values.back()); // interpolated with at the very end
    return values;
}

std::array<const float*, 3> data(const std::array<std::vector<float>, 3>& tables) {
    return {tables[0].data(), tables[1].data(), tables[2].data()};
}

} // namespace

SourceSpace::Curves SourceSpace::curvesOf(const MatrixProfile& profile) {
    Curves curves;
    for (std::size_t c = 0; c < 3; ++c) {
        curves.light[c] = table(profile.light[c]);
        curves.numbers[c] = table([&number = profile.numbers[c]](float root) { return number(root * root); });
    }
    return curves;
}

SourceSpace::SourceSpace(const MatrixProfile& source) : m_curves{curvesOf(source)} {
    static const auto sRGB = MatrixProfile::of(*ColorProfile::sRGB()).value();
    m_sRGB = curvesOf(sRGB);
    const auto to = source.lightTo(sRGB), from = sRGB.lightTo(source);
    for (std::size_t i = 0; i < 9; ++i) {
        m_toSRGB[i] = static_cast<float>(to[i / 3][i % 3]);
        m_fromSRGB[i] = static_cast<float>(from[i / 3][i % 3]);
    }
}

std::shared_ptr<const SourceSpace> SourceSpace::of(const ColorProfilePtr& profile) {
    static std::mutex mutex;
    static std::pair<ColorProfilePtr, std::shared_ptr<const SourceSpace>> last;
    const std::lock_guard lock{mutex};
    if (!last.first || *last.first != *profile) {
        const auto source = MatrixProfile::of(*profile);
        last = {profile, source ? std::shared_ptr<const SourceSpace>{new SourceSpace{*source}} : nullptr};
    }
    return last.second;
}

void SourceSpace::toSRGB(float* pixels, float* beyond, std::size_t count) const {
    const Conversion by{data(m_curves.light), data(m_sRGB.numbers), m_toSRGB.data()};
    HWY_DYNAMIC_DISPATCH(convert)(by, pixels, beyond, 0, count);
}

void SourceSpace::fromSRGB(float* pixels, float* beyond, float share, std::size_t count) const {
    const Conversion by{data(m_sRGB.light), data(m_curves.numbers), m_fromSRGB.data()};
    HWY_DYNAMIC_DISPATCH(convert)(by, pixels, beyond, share, count);
}

} // namespace kelvara
#endif
