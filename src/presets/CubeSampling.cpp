#include "presets/CubeSampling.h"

#include <algorithm>
#include <cstdint>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "presets/CubeSampling.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kelvara {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

constexpr std::size_t blockPixels = 256;
constexpr std::size_t rowFloats = ColorCube::points * 4;           // from green to the next
constexpr std::size_t planeFloats = ColorCube::points * rowFloats; // from blue to the next

/// Where pixels lie in the cube: the entry below and how far from it to the next, 0 to 1.
struct Places {
    HWY_ALIGN std::int32_t offsets[blockPixels];
    HWY_ALIGN float blue[blockPixels];
    HWY_ALIGN float green[blockPixels];
    HWY_ALIGN float red[blockPixels];
};

template <class D, class V> HWY_INLINE V entryBelow(D d, V value, float* fraction) {
    const hn::RebindToSigned<D> di;
    const auto place = hn::Mul(hn::Min(hn::Max(value, hn::Zero(d)), hn::Set(d, 1)),
                               hn::Set(d, static_cast<float>(ColorCube::points - 1)));
    const auto entry =
        hn::Min(hn::ConvertTo(d, hn::ConvertTo(di, place)), hn::Set(d, float{ColorCube::points - 2}));
    hn::Store(hn::Sub(place, entry), d, fraction);
    return entry;
}

void findPlaces(const float* pixels, std::size_t count, Places& places) {
    const hn::ScalableTag<float> d;
    const hn::RebindToSigned<decltype(d)> di;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        auto blue = hn::Undefined(d), green = blue, red = blue, fourth = blue;
        hn::LoadInterleaved4(d, pixels + i * 4, blue, green, red, fourth);
        blue = hn::Mul(entryBelow(d, blue, places.blue + i), hn::Set(d, float{planeFloats}));
        green = hn::Mul(entryBelow(d, green, places.green + i), hn::Set(d, float{rowFloats}));
        red = hn::Mul(entryBelow(d, red, places.red + i), hn::Set(d, 4));
        hn::Store(hn::ConvertTo(di, hn::Add(hn::Add(blue, green), red)), di, places.offsets + i);
    }
}

template <class V> HWY_INLINE V between(V a, V b, V share) {
    return hn::Add(a, hn::Mul(hn::Sub(b, a), share));
}

/// Lanes are the numbers of one entry, or of it and its neighbour in red, which follows it.
template <class D> HWY_INLINE auto alongGreenAndBlue(D d, const float* entry, float green, float blue) {
    const auto greenShare = hn::Set(d, green);
    const auto low = between(hn::LoadU(d, entry), hn::LoadU(d, entry + rowFloats), greenShare);
    const auto high =
        between(hn::LoadU(d, entry + planeFloats), hn::LoadU(d, entry + planeFloats + rowFloats), greenShare);
    return between(low, high, hn::Set(d, blue));
}

void samplePlaces(const float* cube, const Places& places, std::size_t count, float* pixels) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto* entry = cube + places.offsets[i];
        const float blue = places.blue[i], green = places.green[i], red = places.red[i];
#if HWY_MAX_BYTES == 32 || HWY_MAX_BYTES == 64
        const hn::FixedTag<float, 8> pair;
        const hn::Half<decltype(pair)> d;
        const auto both = alongGreenAndBlue(pair, entry, green, blue);
        hn::StoreU(between(hn::LowerHalf(d, both), hn::UpperHalf(d, both), hn::Set(d, red)), d,
                   pixels + i * 4);
#else
        const hn::CappedTag<float, 4> d;
        for (std::size_t c = 0; c < 4; c += hn::Lanes(d)) {
            const auto first = alongGreenAndBlue(d, entry + c, green, blue);
            const auto second = alongGreenAndBlue(d, entry + c + 4, green, blue);
            hn::StoreU(between(first, second, hn::Set(d, red)), d, pixels + i * 4 + c);
        }
#endif
    }
}

void sample(const float* cube, float* pixels, std::size_t count) {
    Places places;
    for (std::size_t begin = 0; begin < count; begin += blockPixels) {
        const auto size = std::min(blockPixels, count - begin);
        findPlaces(pixels + begin * 4, size, places);
        samplePlaces(cube, places, size, pixels + begin * 4);
    }
}

} // namespace HWY_NAMESPACE
} // namespace kelvara
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kelvara {

HWY_EXPORT(sample);

void sampleCube(const ColorCube& cube, float* pixels, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(sample)(cube.values().data(), pixels, count);
}

} // namespace kelvara
#endif
