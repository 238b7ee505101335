#include "samplecard/Noise.h"
#include "samplecard/scenes/Canvas.h"
#include "samplecard/scenes/Discs.h"
#include "samplecard/scenes/Scenes.h"

#include <array>
#include <cstddef>

namespace kelvara::samplecard {
namespace {

Colour lampColour(float which) {
    if (which < 0.55F) return {1.0F, 0.62F, 0.26F};
    if (which < 0.75F) return {1.0F, 0.85F, 0.62F};
    if (which < 0.87F) return {0.62F, 0.80F, 1.0F};
    if (which < 0.95F) return {1.0F, 0.16F, 0.12F};
    return {0.25F, 0.95F, 0.55F};
}

/// Three rows of buildings along a waterfront at night.
class Skyline {
public:
    Skyline(Random& random, float pixel) : m_seed{random.next()}, m_noise{random.next()}, m_pixel{pixel} {
        m_shore = random.uniform(0.06F, 0.16F);
        if (random.chance(0.5F)) { // blue hour
            m_zenith = {0.018F, 0.040F, 0.115F};
            m_horizon = {0.20F, 0.155F, 0.17F};
        } else { // late
            m_zenith = {0.006F, 0.009F, 0.022F};
            m_horizon = {0.085F, 0.058F, 0.045F};
        }
        m_centre = random.uniform(-0.3F, 0.3F);
    }

    [[nodiscard]] float shore() const { return m_shore; }

    /// Above the shore.
    [[nodiscard]] Colour at(float u, float v) const {
        constexpr std::array<float, 3> widths{0.115F, 0.075F, 0.050F}; // near to far
        for (int row = 0; row < 3; ++row) {
            const float width = widths[static_cast<std::size_t>(row)];
            const float position = u / width + 300 + static_cast<float>(row) * 0.37F;
            const int building = static_cast<int>(position);
            const float across = position - static_cast<float>(building);
            const float lot = hash01(building, row, m_seed);
            const float margin = 0.03F + 0.10F * hash01(building, row, m_seed + 1);
            if (across < margin || across > 1 - margin * 0.5F) continue;
            const float middle = std::exp(-squared((u - m_centre) * 2.4F));
            float height = 0.035F + (0.05F + 0.10F * static_cast<float>(row)) * lot * (0.35F + middle);
            height += squared(squared(lot)) * (0.10F + 0.22F * middle) * (row == 1 ? 1.0F : 0.35F);
            // Some towers step back towards the top, some carry a mast.
            const float inset = lot > 0.6F ? 0.84F : 1.0F;
            const bool tall = std::fabs(across - 0.5F) < 0.28F;
            const float top = m_shore - height * (tall ? 1.0F : inset);
            if (v < top) {
                const bool mast = lot > 0.80F && std::fabs(across - 0.5F) < 0.012F && v > top - 0.05F;
                if (!mast) continue;
                return v < top - 0.046F ? Colour{1.3F, 0.10F, 0.07F} : Colour{0.02F, 0.02F, 0.025F};
            }
            return facade(u, v, building, row, lot, across);
        }
        return skyAt(u, v);
    }

    /// A picture of the lights in moving water.
    [[nodiscard]] Colour water(float u, float v) const {
        const float below = v - m_shore;
        const float near = below * 3.2F;
        Colour sum;
        const float swell = m_noise.fractal(u * 14 / (0.25F + near), v * 130 / (0.25F + near), 4);
        constexpr int samples = 5;
        for (int i = 0; i < samples; ++i) {
            const float spread = (static_cast<float>(i) / (samples - 1) - 0.5F) * (0.05F + 0.30F * below);
            const float mirrored =
                m_shore - std::max(0.001F, below * 0.92F + spread + swell * (0.02F + 0.22F * below));
            sum += at(u + swell * 0.012F * (0.3F + near), std::min(m_shore - 0.001F, mirrored));
        }
        const float facing = 0.78F - 0.45F * clamp01(below * 1.6F);
        return sum * (facing / samples) * (0.80F + 0.5F * swell) + Colour{0.002F, 0.004F, 0.007F};
    }

private:
    [[nodiscard]] Colour skyAt(float u, float v) const {
        const float high = clamp01((m_shore - v) * 1.5F);
        const Colour light = mix(m_horizon, m_zenith, std::sqrt(high));
        const float clouds = m_noise.fractal(u * 2.2F, v * 7, 5);
        const float glow = std::exp(-high * 5) * 0.6F;
        return light * (0.95F + 0.5F * clouds) + Colour{0.11F, 0.062F, 0.028F} * (glow * (0.7F + clouds));
    }

    [[nodiscard]] Colour facade(float u, float v, int building, int row, float lot, float across) const {
        const float haze = 0.10F + 0.2F * static_cast<float>(row);
        const float shade = 0.5F + 0.8F * across * hash01(building, row, m_seed + 2);
        Colour wall = mix(Colour{0.010F, 0.011F, 0.016F} * shade, m_horizon, haze * 0.55F);
        // Street lamps light the lower floors.
        wall += Colour{0.13F, 0.07F, 0.025F} * std::exp(-(m_shore - v) * 55);
        const float pitch =
            (0.0062F + 0.004F * hash01(building, row, m_seed + 3)) * (1 - 0.14F * static_cast<float>(row));
        const float column = u / pitch;
        const float floor = v / (pitch * 1.25F);
        const float inColumn = column - std::floor(column);
        const float inFloor = floor - std::floor(floor);
        const float soft = std::min(0.3F, m_pixel / pitch);
        const float pane = smoothStep(0.2F - soft, 0.2F + soft, inColumn) *
                           smoothStep(0.82F + soft, 0.82F - soft, inColumn) *
                           smoothStep(0.25F - soft, 0.25F + soft, inFloor) *
                           smoothStep(0.75F + soft, 0.75F - soft, inFloor);
        if (pane <= 0) return wall;
        const int cellX = static_cast<int>(std::floor(column));
        const int cellY = static_cast<int>(std::floor(floor));
        const float lit = hash01(cellX + building * 71, cellY, m_seed + 4);
        // Whole floors of offices are lit together.
        const float share = 0.16F + 0.34F * lot + (hash01(building, cellY, m_seed + 5) > 0.86F ? 0.4F : 0);
        if (lit > share) return wall + Colour{0.006F, 0.007F, 0.010F} * pane;
        const float warm = hash01(building, row, m_seed + 6);
        const Colour lamp = mix(Colour{1.0F, 0.66F, 0.32F}, Colour{0.78F, 0.86F, 0.95F},
                                smoothStep(0.55F, 0.8F, warm + 0.2F * lit));
        const float strength =
            (0.22F + 1.1F * squared(hash01(cellX, cellY, m_seed + 7))) * (1 - 0.45F * haze);
        return wall + lamp * (pane * strength);
    }

    std::uint32_t m_seed;
    Noise m_noise;
    float m_pixel;
    float m_shore = 0;
    float m_centre = 0;
    Colour m_zenith;
    Colour m_horizon;
};

/// Lamps of a street out of focus: rows running away from the camera.
Picture bokeh(int width, int height, std::uint32_t seed, Random& random) {
    Discs discs;
    const float vanishX = random.uniform(-0.2F, 0.2F);
    const float vanishY = random.uniform(-0.05F, 0.05F);
    for (int i = 0; i < 190; ++i) {
        const float depth = 1 / (0.06F + squared(random.uniform()) * 0.94F);
        const float side = random.chance(0.5F) ? 1.0F : -1.0F;
        const bool car = random.chance(0.35F);
        const float x =
            vanishX + side * random.uniform(car ? 0.1F : 0.35F, car ? 0.45F : 1.3F) * 1.5F / depth;
        const float y =
            vanishY + (car ? random.uniform(0.10F, 0.2F) : random.uniform(-0.8F, 0.15F)) / depth * 1.4F;
        const Colour lamp = car ? (side > 0 ? Colour{1.0F, 0.10F, 0.06F} : Colour{1.0F, 0.92F, 0.78F})
                                : lampColour(random.uniform());
        const float radius = 0.018F + 0.036F * (1 - 1 / depth) * random.uniform(0.7F, 1.1F);
        discs.add({x, y, radius, lamp * random.uniform(0.10F, 0.65F)});
    }
    const Noise noise{random.next()};
    const Colour air = random.chance(0.5F) ? Colour{0.012F, 0.016F, 0.034F} : Colour{0.022F, 0.014F, 0.012F};
    FilmOptions options;
    options.seed = seed;
    options.grain = 0.016F;
    options.saturation = 1.15F;
    options.vignette = 0.35F;
    return exposeRows(
        Film{width, height, options}, [&](float v) { discs.beginRow(v); },
        [&](float u, float v) {
            const float dim = 0.5F + noise.fractal(u * 1.6F, v * 1.6F, 3);
            const float street = std::exp(-squared((v - vanishY - 0.22F) * 3.2F));
            return air * (0.5F + dim) + Colour{0.10F, 0.055F, 0.026F} * (street * dim) + discs.at(u);
        });
}

} // namespace

Picture paintCity(int width, int height, std::uint32_t seed) {
    Random random{seed * std::uint64_t{3} + 2500};
    if (seed % 3 == 0) return bokeh(width, height, seed, random);
    const Skyline skyline{random, pixelOf(width, height)};
    Discs discs;
    if (seed % 3 == 2)
        for (int i = 0; i < 38; ++i)
            discs.add({random.uniform(-0.7F, 0.7F), random.uniform(0.26F, 0.52F),
                       random.uniform(0.02F, 0.055F),
                       lampColour(random.uniform()) * random.uniform(0.08F, 0.5F)});
    FilmOptions options;
    options.seed = seed;
    options.grain = 0.016F;
    options.contrast = 0.3F;
    options.exposure = 1.35F;
    options.saturation = 1.1F;
    return exposeRows(
        Film{width, height, options}, [&](float v) { discs.beginRow(v); },
        [&](float u, float v) {
            return (v < skyline.shore() ? skyline.at(u, v) : skyline.water(u, v)) + discs.at(u);
        });
}

} // namespace kelvara::samplecard
