#include "samplecard/scenes/Hour.h"
#include "samplecard/scenes/Landscape.h"
#include "samplecard/scenes/Scenes.h"

namespace kelvara::samplecard {
namespace {

/// Rolling farmland: fields of different crops, hedges and groves.
class Farmland : public Land {
public:
    Farmland(float relief, Colour crop, std::uint32_t seed)
        : m_relief{relief}, m_crop{crop}, m_form{seed}, m_cover{seed + 1}, m_seed{seed} {}

    [[nodiscard]] float height(float x, float z, float footprint) const override {
        float result = m_relief * (m_form.fractal(x * 0.42F, z * 0.42F, 3) + 0.35F) *
                       (0.3F + 0.7F * smoothStep(0.2F, 2.5F, z));
        result += m_relief * 2.2F * smoothStep(8, 30, z) * (0.4F + m_form.fractal(x * 0.08F, z * 0.08F, 4));
        const float grove = groveAt(x, z);
        if (grove > 0 && footprint < 0.02F) {
            const float crown = m_cover.at(x * 85, z * 85);
            const float leaves = footprint < 0.0012F ? m_cover.fractal(x * 420, z * 420, 2) : 0;
            result += grove * (0.010F + 0.006F * crown + 0.0025F * leaves);
        }
        return result;
    }

    [[nodiscard]] Colour ground(Vector point, Vector, float footprint) const override {
        const float grain = m_cover.fractal(point.x * 160, point.z * 160, footprint < 0.001F ? 4 : 2);
        const float grove = groveAt(point.x, point.z);
        const float leaves = m_cover.at(point.x * 210, point.z * 210);
        const Colour wood = Colour{0.026F, 0.048F, 0.014F} * (1 + 0.55F * leaves + 0.4F * grain);
        if (grove >= 1) return wood;
        return mix(field(point.x, point.z, footprint) * (1 + 0.5F * grain), wood, grove);
    }

private:
    [[nodiscard]] float groveAt(float x, float z) const {
        const float woods = m_cover.fractal(x * 0.9F, z * 0.9F, 3);
        return smoothStep(0.14F, 0.17F, woods);
    }

    [[nodiscard]] Colour field(float x, float z, float footprint) const {
        // Boundaries follow the land, not a ruler.
        const float bentX = x * 2.4F + 0.5F * m_form.at(x * 0.7F, z * 0.7F);
        const float bentZ = z * 1.5F + 0.5F * m_form.at(x * 0.7F + 40, z * 0.7F);
        const float column = std::floor(bentX);
        const float row = std::floor(bentZ);
        const float which = hash01(static_cast<int>(column), static_cast<int>(row), m_seed);
        Colour colour = which < 0.3F    ? Colour{0.10F, 0.16F, 0.035F}
                        : which < 0.55F ? Colour{0.16F, 0.20F, 0.05F}
                        : which < 0.75F ? m_crop
                                        : Colour{0.21F, 0.17F, 0.085F};
        const float furrow = footprint < 0.002F ? std::sin((which < 0.5F ? bentX : bentZ) * 260) * 0.12F : 0;
        colour = colour * (0.92F + 0.16F * which + furrow);
        const float edge =
            std::min(std::min(bentX - column, column + 1 - bentX), std::min(bentZ - row, row + 1 - bentZ));
        return mix(Colour{0.03F, 0.05F, 0.016F}, colour, smoothStep(0.012F, 0.03F, edge));
    }

    float m_relief;
    Colour m_crop;
    Noise m_form;
    Noise m_cover;
    std::uint32_t m_seed;
};

} // namespace

Picture paintHills(int width, int height, std::uint32_t seed) {
    Random random{seed * std::uint64_t{3} + 500};
    Hour hour = hourOf(random);
    hour.sky.cover = random.uniform(0.35F, 0.85F);
    hour.sky.cloudSize = random.uniform(0.6F, 1.1F);
    const Sky sky{hour.sky, random.next()};
    const Colour crop = random.chance(0.5F) ? Colour{0.42F, 0.34F, 0.04F} : Colour{0.33F, 0.24F, 0.10F};
    const Farmland land{random.uniform(0.16F, 0.32F), crop, random.next()};
    Viewpoint view;
    view.focal = random.uniform(1.0F, 2.1F) * (height > width ? 1.3F : 1.0F);
    view.nearest = 0.12F;
    view.farthest = 60;
    view.eye = land.height(0, 0.1F, 0.01F) + random.uniform(0.10F, 0.2F);
    view.horizon = random.uniform(0.34F, 0.5F);
    view.haze = hour.haze * 1.6F;
    view.sunlight = hour.sunlight;
    view.skylight = hour.skylight;
    FilmOptions options;
    options.seed = seed;
    options.contrast = 0.5F;
    options.saturation = random.uniform(1.0F, 1.15F);
    options.exposure = 1.15F;
    Film film{width, height, options};
    paintLandscape(film, land, sky, view, random.next());
    return std::move(film).developed();
}

} // namespace kelvara::samplecard
