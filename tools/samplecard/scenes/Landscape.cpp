#include "samplecard/scenes/Landscape.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace kelvara::samplecard {
namespace {

/// Where hills keep the sun off, sampled over the view: coarse, and soft between the samples as shadows of
/// far ridges are.
class Shadows {
public:
    Shadows(const Land& land, const Viewpoint& view, Vector sun, float widest)
        : m_nearest{view.nearest}, m_widest{widest}, m_perStep{std::log(view.farthest / view.nearest) /
                                                               (depths - 1)},
          m_light(static_cast<std::size_t>(columns) * depths) {
        const float level = std::sqrt(sun.x * sun.x + sun.z * sun.z);
        for (int depth = 0; depth < depths; ++depth) {
            const float z = m_nearest * std::exp(m_perStep * static_cast<float>(depth));
            const float footprint = z * 0.012F;
            for (int column = 0; column < columns; ++column) {
                const float x = (static_cast<float>(column) / (columns - 1) * 2 - 1) * widest * z;
                const float own = land.height(x, z, footprint);
                float light = 1;
                float distance = 0.06F + z * 0.01F;
                for (int step = 0; step < 18 && light > 0; ++step, distance *= 1.27F) {
                    const float ray = own + distance * sun.y / level;
                    const float there =
                        land.height(x + sun.x / level * distance, z + sun.z / level * distance, footprint);
                    light = std::min(light, clamp01(1 - (there - ray) / (0.05F + distance * 0.07F)));
                }
                m_light[static_cast<std::size_t>(depth * columns + column)] = light;
            }
        }
    }

    [[nodiscard]] float at(float across, float z) const {
        const float column = clamp01(across / m_widest / 2 + 0.5F) * (columns - 1.001F);
        const float depth = std::min(std::max(0.0F, std::log(z / m_nearest) / m_perStep), depths - 1.001F);
        const auto left = static_cast<std::size_t>(column);
        const auto row = static_cast<std::size_t>(depth);
        const float* cell = &m_light[row * columns + left];
        const float t = column - static_cast<float>(left);
        return mix(mix(cell[0], cell[1], t), mix(cell[columns], cell[columns + 1], t),
                   depth - static_cast<float>(row));
    }

private:
    static constexpr int columns = 150;
    static constexpr int depths = 170;
    float m_nearest;
    float m_widest;
    float m_perStep;
    std::vector<float> m_light;
};

class Painter {
public:
    Painter(Film& film, const Land& land, const Sky& sky, const Viewpoint& view, std::uint32_t seed)
        : m_film{film}, m_land{land}, m_sky{sky}, m_view{view}, m_focal{view.focal *
                                                                        static_cast<float>(film.width())},
          m_horizon{view.horizon * static_cast<float>(film.height())},
          m_shadows{land, view, sky.look().sun, 0.55F / view.focal}, m_waves{seed + 9},
          m_column(static_cast<std::size_t>(film.height())), m_isWater(m_column.size()) {}

    void column(int x) {
        m_across = (static_cast<float>(x) - static_cast<float>(m_film.width()) / 2) / m_focal;
        m_haze = m_sky.haze({m_across, 0, 1});
        const int skyline = march();
        for (int y = 0; y < skyline; ++y) at(y) = m_sky.at(direction(static_cast<float>(y)));
        if (m_view.water) reflect();
        for (int y = 0; y < m_film.height(); ++y) m_film.expose(x, y, m_column[static_cast<std::size_t>(y)]);
    }

private:
    [[nodiscard]] Colour& at(int y) { return m_column[static_cast<std::size_t>(y)]; }
    [[nodiscard]] Vector direction(float y) const {
        return normalised({m_across, (m_horizon - y) / m_focal, 1});
    }

    /// Walks away from the camera and fills the column upwards; gives the first row below the sky.
    int march() {
        m_waterTop = m_film.height();
        std::fill(m_isWater.begin(), m_isWater.end(), false);
        int top = m_film.height();
        std::optional<float> heightBefore;
        float zBefore = 0;
        float before = 0;
        bool followsBefore = false;
        Colour colourBefore;
        // Strides shrink where the ground rises steeply into view and grow where it lies flat or hidden.
        const float longest = std::max(0.004F, 16.0F / m_focal);
        float stride = longest * 0.2F;
        for (float z = m_view.nearest; z < m_view.farthest && top > 0;) {
            const float footprint = z / m_focal;
            float height = m_land.height(m_across * z, z, footprint);
            const bool water = m_view.water && height < *m_view.water;
            if (water) height = *m_view.water;
            const float slope = heightBefore ? (height - *heightBefore) / (z - zBefore) : 0;
            heightBefore = height;
            zBefore = z;
            const float y = m_horizon - m_focal * (height - m_view.eye) / z;
            const int row = std::max(0, static_cast<int>(std::ceil(y)));
            const bool drawn = row < top;
            if (drawn) {
                const Colour colour = water ? Colour{} : shade({m_across * z, height, z}, footprint, slope);
                for (int filled = row; filled < top; ++filled) {
                    const float towards = followsBefore && before > y
                                              ? (before - static_cast<float>(filled)) / (before - y)
                                              : 1;
                    at(filled) = mix(colourBefore, colour, clamp01(towards));
                    m_isWater[static_cast<std::size_t>(filled)] = water;
                }
                if (water) m_waterTop = row;
                top = row;
                colourBefore = colour;
            }
            const float rise = before - y;
            followsBefore = !water && (drawn || (followsBefore && row <= top + 1));
            before = y;
            const float hidden = y - static_cast<float>(top);
            if (hidden > 3) {
                stride = std::min(longest * 2, longest * 0.1F + hidden * 0.2F / m_focal);
            } else {
                const float rows = std::max(0.5F, std::fabs(rise));
                stride = std::min(longest, std::max(longest * 0.02F, stride * std::min(2.0F, 2.4F / rows)));
            }
            z *= 1 + stride;
        }
        return top;
    }

    /// `slope` is how the ground rises along the way of the ray.
    Colour shade(Vector point, float footprint, float slope) {
        // The slope sideways costs a second height: every other sample shares its neighbour's.
        if (!m_hasFreshSlope) {
            const float step = footprint * 1.6F;
            m_alongX = (m_land.height(point.x + step, point.z, footprint) - point.y) / step;
        }
        m_hasFreshSlope = !m_hasFreshSlope;
        const Vector normal = normalised({-m_alongX, 1, m_across * m_alongX - slope});
        const Colour ground = m_land.ground(point, normal, footprint);
        const Vector sun = m_sky.look().sun;
        const float direct = std::max(0.0F, dot(normal, sun)) * m_shadows.at(m_across, point.z);
        const float open = 0.55F + 0.45F * normal.y;
        const float bounced = std::max(0.0F, -normal.x * sun.x - normal.z * sun.z) * 0.10F;
        const Colour light = m_view.sunlight * (direct + bounced) + m_view.skylight * open;
        const float kept = std::exp(-m_view.haze * point.z * (0.65F + 0.35F / (1 + std::max(0.0F, point.y))));
        return mix(m_haze, ground * light, kept);
    }

    /// Mirrors what stands above the water in it, drawn out by the waves.
    void reflect() {
        const float depth = m_view.eye - *m_view.water;
        const float shore = m_horizon;
        for (int y = m_waterTop; y < m_film.height(); ++y) {
            if (!m_isWater[static_cast<std::size_t>(y)]) continue;
            const float below = std::max(0.7F, static_cast<float>(y) - shore);
            const float z = depth * m_focal / below;
            const float x = m_across * z;
            const float calm = smoothStep(-0.35F, 0.45F, m_waves.fractal(x * 1.3F, z * 0.5F, 3));
            const float wave = m_waves.fractal(x * 260, z * 90, 5) + 0.6F * m_waves.at(x * 60, z * 22);
            const float slope =
                wave * m_view.ripples * mix(0.006F, 0.045F, calm) * std::min(1.0F, z * 6 + 0.3F);
            const float mirrored =
                std::min(shore - 0.5F, 2 * shore - static_cast<float>(y) + slope * m_focal);
            const float limited = std::min(std::max(0.0F, mirrored), static_cast<float>(m_waterTop) - 1);
            const auto row = static_cast<std::size_t>(limited);
            const std::size_t nextRow =
                std::min(row + 1, static_cast<std::size_t>(std::max(0, m_waterTop - 1)));
            const Colour image = mix(m_column[row], m_column[nextRow], limited - static_cast<float>(row));
            const float grazing =
                clamp01(1 - below / std::sqrt(below * below + m_focal * m_focal) - slope * 0.8F);
            const float mirror = 0.03F + 0.97F * squared(squared(grazing)) * grazing;
            at(y) = mix(m_view.depth, image, std::min(0.96F, mirror * 1.12F));
        }
    }

    Film& m_film;
    const Land& m_land;
    const Sky& m_sky;
    const Viewpoint& m_view;
    float m_focal;   // pixels
    float m_horizon; // pixels
    Shadows m_shadows;
    Noise m_waves;
    std::vector<Colour> m_column;
    std::vector<bool> m_isWater;
    float m_across = 0;
    Colour m_haze;
    float m_alongX = 0;
    bool m_hasFreshSlope = false;
    int m_waterTop = 0;
};

} // namespace

void paintLandscape(Film& film, const Land& land, const Sky& sky, const Viewpoint& view, std::uint32_t seed) {
    Painter painter{film, land, sky, view, seed};
    for (int x = 0; x < film.width(); ++x) painter.column(x);
}

} // namespace kelvara::samplecard
