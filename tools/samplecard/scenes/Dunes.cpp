#include "samplecard/scenes/Landscape.h"
#include "samplecard/scenes/Scenes.h"

namespace kelvara::samplecard {
namespace {

/// Crests with a gentle windward and a steep lee side, and ripples on them.
class Dunes : public Land {
public:
    Dunes(Colour sand, float size, std::uint32_t seed)
        : m_sand{sand}, m_size{size}, m_form{seed}, m_bend{seed + 1}, m_grain{seed + 2} {}

    [[nodiscard]] float height(float x, float z, float footprint) const override {
        const float bentX = x / m_size + 0.7F * m_bend.fractal(x / m_size * 0.6F, z / m_size * 0.6F, 2);
        const float bentZ = z / m_size * 0.65F + 0.5F * m_bend.at(x / m_size * 0.5F + 9, z / m_size * 0.5F);
        float crest = 1 - std::fabs(m_form.at(bentX, bentZ)) * 1.5F;
        float result = 0.30F * m_size * (crest > 0 ? crest * (0.55F + 0.45F * crest) : crest * 0.55F);
        const float second = 1 - std::fabs(m_form.at(bentX * 2.3F + 31, bentZ * 1.7F)) * 1.6F;
        result += 0.055F * m_size * second;
        if (footprint < 0.0004F) {
            const float along =
                x * 0.8F + z * 0.6F + 0.006F * m_bend.at(x * 60, z * 60) + 0.05F * m_bend.at(x * 9, z * 9);
            result += 0.00011F * std::sin(along * 2600) * smoothStep(0.0004F, 0.0001F, footprint);
        }
        return result;
    }

    [[nodiscard]] Colour ground(Vector point, Vector normal, float footprint) const override {
        const float tone = m_grain.fractal(point.x * 8, point.z * 8, 4);
        const float fine = footprint < 0.001F ? m_grain.fractal(point.x * 1500, point.z * 1500, 2) : 0;
        return m_sand * (1 + 0.16F * tone + 0.16F * fine - 0.08F * (1 - normal.y));
    }

private:
    Colour m_sand;
    float m_size;
    Noise m_form;
    Noise m_bend;
    Noise m_grain;
};

} // namespace

Picture paintDunes(int width, int height, std::uint32_t seed) {
    Random random{seed * std::uint64_t{3} + 900};
    const float side = random.chance(0.5F) ? 1.0F : -1.0F;
    Sky::Look look;
    look.sun = {side * random.uniform(0.7F, 0.95F), random.uniform(0.22F, 0.4F),
                random.uniform(-0.15F, 0.5F)};
    look.cover = random.uniform(0.0F, 0.4F);
    look.streaks = 2.5F;
    Viewpoint view;
    view.sunlight = {3.3F, 2.5F, 1.6F};
    view.skylight = {0.24F, 0.31F, 0.46F};
    if (random.chance(0.5F)) { // evening
        look.zenith = {0.14F, 0.22F, 0.42F};
        look.horizon = {0.90F, 0.68F, 0.50F};
        look.glow = {0.7F, 0.4F, 0.2F};
        look.sunlight = {2.1F, 1.5F, 1.0F};
        view.sunlight = {3.6F, 2.3F, 1.25F};
    } else {
        look.zenith = {0.07F, 0.19F, 0.46F};
        look.horizon = {0.52F, 0.64F, 0.76F};
        look.glow = {0.3F, 0.25F, 0.18F};
    }
    const Sky sky{look, random.next()};
    const std::uint32_t form = random.next();
    const Colour sand = random.chance(0.6F) ? Colour{0.52F, 0.31F, 0.15F} : Colour{0.55F, 0.43F, 0.29F};
    const Dunes land{sand, random.uniform(0.22F, 0.42F), form};
    view.focal = random.uniform(1.0F, 1.8F) * (height > width ? 1.3F : 1.0F);
    view.nearest = 0.025F;
    view.farthest = 14;
    float ground = 0;
    for (int i = 0; i < 12; ++i)
        for (int aside = -1; aside <= 1; ++aside)
            ground = std::max(ground, land.height(0.05F * static_cast<float>(aside * i) * 0.4F,
                                                  0.05F * static_cast<float>(i), 0.001F));
    view.eye = ground + random.uniform(0.015F, 0.04F);
    view.horizon = random.uniform(0.26F, 0.42F);
    view.haze = 0.05F;
    FilmOptions options;
    options.seed = seed;
    options.contrast = 0.5F;
    options.saturation = 1.1F;
    Film film{width, height, options};
    paintLandscape(film, land, sky, view, random.next());
    return std::move(film).developed();
}

} // namespace kelvara::samplecard
