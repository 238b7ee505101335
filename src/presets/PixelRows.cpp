#include "presets/PixelRows.h"

#include <algorithm>
#include <cstring>
#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "presets/PixelRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kelvara {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

template <typename Sample> void unpackSamples(const Sample* from, float* to, std::size_t count) {
    const hn::ScalableTag<float> d;
    const hn::RebindToSigned<decltype(d)> di;
    const hn::Rebind<Sample, decltype(d)> ds;
    constexpr float scale = 1.0F / float{std::numeric_limits<Sample>::max()};
    const auto samples = count * 4;
    std::size_t i = 0;
    for (; i + hn::Lanes(d) <= samples; i += hn::Lanes(d)) {
        const auto numbers = hn::ConvertTo(d, hn::PromoteTo(di, hn::LoadU(ds, from + i)));
        hn::StoreU(hn::Mul(numbers, hn::Set(d, scale)), d, to + i);
    }
    for (; i < samples; ++i) to[i] = static_cast<float>(from[i]) * scale;
}

template <class D> struct Factors {
    hn::VFromD<D> factor, summand;
    /// 0 to `most`.
    HWY_INLINE auto rounded(D d, hn::VFromD<D> value, float most) const {
        const auto scaled = hn::Mul(hn::Add(hn::Mul(value, factor), summand), hn::Set(d, most));
        const auto number = hn::Min(hn::Max(scaled, hn::Zero(d)), hn::Set(d, most));
        const auto whole = hn::ConvertTo(hn::RebindToSigned<D>{}, hn::Add(number, hn::Set(d, 0.5F)));
        return hn::BitCast(hn::RebindToUnsigned<D>{}, whole);
    }
};

template <typename Sample> void packSamples(const float* from, const float* factors, const float* summands,
                                            Sample* to, std::size_t count) {
    constexpr float most = std::numeric_limits<Sample>::max();
    const hn::ScalableTag<float> d;
    const hn::RebindToUnsigned<decltype(d)> du;
    const auto lanes = hn::Lanes(d);
    HWY_ALIGN std::uint32_t words[2 * hn::MaxLanes(d)];
    for (std::size_t i = 0; i < count; i += lanes) {
        auto blue = hn::Undefined(d), green = blue, red = blue, fourth = blue;
        hn::LoadInterleaved4(d, from + i * 4, blue, green, red, fourth);
        const Factors<decltype(d)> by{hn::LoadU(d, factors + i), hn::LoadU(d, summands + i)};
        const auto b = by.rounded(d, blue, most), g = by.rounded(d, green, most),
                   r = by.rounded(d, red, most);
        if constexpr (sizeof(Sample) == 1) {
            const auto top = hn::Or(hn::ShiftLeft<16>(r), hn::Set(du, 0xFF000000U));
            hn::Store(hn::Or(hn::Or(b, hn::ShiftLeft<8>(g)), top), du, words);
        } else {
            hn::StoreInterleaved2(hn::Or(b, hn::ShiftLeft<16>(g)), hn::Or(r, hn::Set(du, 0xFFFF0000U)), du,
                                  words);
        }
        std::memcpy(to + i * 4, words, std::min(lanes, count - i) * 4 * sizeof(Sample));
    }
}

void unpack8(const std::uint8_t* from, float* to, std::size_t count) { unpackSamples(from, to, count); }
void unpack16(const std::uint16_t* from, float* to, std::size_t count) { unpackSamples(from, to, count); }
void pack8(const float* from, const float* factors, const float* summands, std::uint8_t* to,
           std::size_t count) {
    packSamples(from, factors, summands, to, count);
}
void pack16(const float* from, const float* factors, const float* summands, std::uint16_t* to,
            std::size_t count) {
    packSamples(from, factors, summands, to, count);
}

} // namespace HWY_NAMESPACE
} // namespace kelvara
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kelvara {

HWY_EXPORT(unpack8);
HWY_EXPORT(unpack16);
HWY_EXPORT(pack8);
HWY_EXPORT(pack16);

void PixelRows::unpack(const std::uint8_t* from, float* to, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(unpack8)(from, to, count);
}
void PixelRows::unpack(const std::uint16_t* from, float* to, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(unpack16)(from, to, count);
}
void PixelRows::pack(const float* from, const float* factors, const float* summands, std::uint8_t* to,
                     std::size_t count) {
    HWY_DYNAMIC_DISPATCH(pack8)(from, factors, summands, to, count);
}
void PixelRows::pack(const float* from, const float* factors, const float* summands, std::uint16_t* to,
                     std::size_t count) {
    HWY_DYNAMIC_DISPATCH(pack16)(from, factors, summands, to, count);
}

} // namespace kelvara
#endif
