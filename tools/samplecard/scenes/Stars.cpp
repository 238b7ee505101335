#include "samplecard/Noise.h"
#include "samplecard/scenes/Canvas.h"
#include "samplecard/scenes/Scenes.h"

#include <cstddef>

namespace kelvara::samplecard {
namespace {

/// One size of stars: at most one in each cell of a grid.
Colour starsAt(float u, float v, float cells, float share, float brightness, float blur, std::uint32_t seed) {
    const float x = u * cells + 500;
    const float y = v * cells + 500;
    const int column = static_cast<int>(x);
    const int row = static_cast<int>(y);
    const std::uint32_t lot = hashOf(column, row, seed);
    if (static_cast<float>(lot & 0xFFFF) > share * 65536) return {};
    const float size = hash01(column, row, seed + 1);
    const float dx = x - static_cast<float>(column) - 0.25F - 0.5F * hash01(column, row, seed + 2);
    const float dy = y - static_cast<float>(row) - 0.25F - 0.5F * hash01(column, row, seed + 3);
    const float distance = (dx * dx + dy * dy) / squared(blur * cells);
    if (distance > 12) return {};
    const float light =
        brightness * (0.12F + squared(squared(size)) * 2.2F) / (1 + distance * distance * 2 + distance);
    const float warmth = hash01(column, row, seed + 4);
    return mix(Colour{0.75F, 0.86F, 1.2F}, Colour{1.2F, 0.92F, 0.68F}, warmth * warmth) * light;
}

struct Night {
    float angle;  // of the band
    float offset; // of the band from the middle
    float horizon;
    Colour glow;
    Colour air;
};

class Heavens {
public:
    Heavens(const Night& night, float pixel, std::uint32_t seed)
        : m_night{night}, m_cosine{std::cos(night.angle)}, m_sine{std::sin(night.angle)},
          m_blur{std::max(0.00042F, pixel * 0.9F)}, m_dust{seed}, m_seed{seed} {}

    [[nodiscard]] Colour at(float u, float v) const {
        const float along = u * m_cosine + v * m_sine;
        const float across = -u * m_sine + v * m_cosine - m_night.offset + 0.05F * m_dust.at(along * 2, 1);
        const float cloud = m_dust.fractal(along * 5, across * 7, 6);
        const float band = std::exp(-squared(across / (0.13F + 0.05F * cloud)));
        const float core = std::exp(-squared(across / 0.07F) - squared((along - 0.1F) / 0.35F));
        const float rift = smoothStep(0.02F, 0.26F,
                                      m_dust.fractal(along * 6 + 20, across * 13, 6) + 0.20F -
                                          std::fabs(across + 0.012F) * 3.4F);
        Colour light = m_night.air;
        const float low = clamp01(1 - (m_night.horizon - v) * 1.25F);
        light += m_night.glow * (squared(low) * low);
        const float milk = band * (0.45F + 0.8F * clamp01(0.5F + cloud)) * (1 - 0.82F * rift);
        light += Colour{0.070F, 0.075F, 0.10F} * milk;
        light += Colour{0.17F, 0.125F, 0.085F} * (core * (1 - 0.8F * rift) * (0.7F + cloud));
        const float crowd = 0.05F + 0.55F * milk;
        const float clear = 1 - 0.7F * squared(low);
        Colour stars = starsAt(u, v, 330, crowd, 0.22F, m_blur, m_seed + 10);
        stars += starsAt(u, v, 190, 0.07F + 0.12F * milk, 0.5F, m_blur, m_seed + 20);
        stars += starsAt(u, v, 60, 0.14F, 1.4F, m_blur * 1.25F, m_seed + 30);
        stars += starsAt(u, v, 14, 0.15F, 4, m_blur * 1.9F, m_seed + 40);
        return light + stars * clear;
    }

private:
    Night m_night;
    float m_cosine;
    float m_sine;
    float m_blur;
    Noise m_dust;
    std::uint32_t m_seed;
};

} // namespace

Picture paintStars(int width, int height, std::uint32_t seed) {
    Random random{seed * std::uint64_t{3} + 1700};
    Night night{};
    night.angle = random.uniform(-1.25F, -0.5F) * (random.chance(0.5F) ? 1.0F : -1.0F);
    night.offset = random.uniform(-0.12F, 0.08F);
    night.horizon = (height > width ? 0.46F : 0.28F) - random.uniform(0, 0.08F);
    night.air = random.chance(0.5F) ? Colour{0.006F, 0.010F, 0.022F} : Colour{0.008F, 0.014F, 0.020F};
    night.glow = random.chance(0.6F) ? Colour{0.13F, 0.075F, 0.035F} : Colour{0.035F, 0.075F, 0.060F};
    const Heavens heavens{night, pixelOf(width, height), random.next()};
    const Noise ridge{random.next()};
    const auto ridgeAt = [&](float u, float scale, float row) { return ridge.fractal(u * scale, row, 7); };
    FilmOptions options;
    options.seed = seed;
    options.contrast = 0.3F;
    options.saturation = 1.15F;
    options.vignette = 0.4F;
    options.grain = 0.022F;
    options.exposure = 1.9F;
    std::vector<float> far(static_cast<std::size_t>(width));
    std::vector<float> near(far.size());
    const float pixel = pixelOf(width, height);
    for (std::size_t x = 0; x < far.size(); ++x) {
        const float u = (static_cast<float>(x) + 0.5F - static_cast<float>(width) / 2) * pixel;
        far[x] = night.horizon - 0.02F - 0.16F * ridgeAt(u, 2.2F, 3);
        const float firs = std::fabs(ridge.at(u * 70, 9)) * 0.022F + std::fabs(ridge.at(u * 160, 5)) * 0.010F;
        near[x] = night.horizon + 0.10F - 0.13F * ridgeAt(u, 1.6F, 60) - firs;
    }
    return exposeRows(
        Film{width, height, options}, [](float) {},
        [&](float u, float v) {
            const auto column =
                std::min(far.size() - 1,
                         static_cast<std::size_t>(std::max(0.0F, u / pixel + static_cast<float>(width) / 2)));
            if (v > near[column])
                return Colour{0.0022F, 0.0026F, 0.0034F} * (1.5F + ridge.fractal(u * 60, v * 60, 3));
            if (v > far[column]) {
                const float rock = ridge.fractal(u * 26 + v * 8, v * 44, 5);
                return mix(Colour{0.007F, 0.008F, 0.012F} * (1 + 1.2F * rock), night.glow, 0.10F);
            }
            return heavens.at(u, v);
        });
}

} // namespace kelvara::samplecard
