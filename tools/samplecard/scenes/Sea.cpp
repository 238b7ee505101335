#include "samplecard/Sky.h"
#include "samplecard/scenes/Canvas.h"
#include "samplecard/scenes/Scenes.h"

namespace kelvara::samplecard {
namespace {

struct Evening {
    Sky::Look sky;
    Colour depth;
};

Evening eveningOf(Random& random) {
    Evening evening;
    Sky::Look& sky = evening.sky;
    sky.sun = {random.uniform(-0.22F, 0.22F), random.uniform(0.025F, 0.11F), 1};
    sky.showsSun = true;
    sky.cover = random.uniform(0.35F, 0.75F);
    sky.cloudSize = random.uniform(0.8F, 1.6F);
    sky.streaks = random.uniform(1.2F, 2.8F);
    switch (random.integer(0, 2)) {
    case 0: // orange
        sky.zenith = {0.10F, 0.15F, 0.34F};
        sky.horizon = {0.75F, 0.42F, 0.24F};
        sky.glow = {1.5F, 0.62F, 0.14F};
        sky.sunlight = {2.4F, 1.25F, 0.55F};
        sky.cloudShade = {0.17F, 0.13F, 0.19F};
        evening.depth = {0.008F, 0.020F, 0.034F};
        break;
    case 1: // rose
        sky.zenith = {0.13F, 0.14F, 0.36F};
        sky.horizon = {0.70F, 0.40F, 0.42F};
        sky.glow = {1.2F, 0.45F, 0.30F};
        sky.sunlight = {2.2F, 1.05F, 0.85F};
        sky.cloudShade = {0.22F, 0.16F, 0.28F};
        evening.depth = {0.012F, 0.018F, 0.040F};
        break;
    default: // a silvery morning
        sky.sun.y = random.uniform(0.16F, 0.26F);
        sky.zenith = {0.16F, 0.26F, 0.46F};
        sky.horizon = {0.66F, 0.68F, 0.70F};
        sky.glow = {0.9F, 0.78F, 0.55F};
        sky.sunlight = {2.2F, 2.0F, 1.65F};
        sky.cloudShade = {0.30F, 0.33F, 0.38F};
        evening.depth = {0.008F, 0.028F, 0.036F};
        break;
    }
    sky.glowWidth = random.uniform(0.16F, 0.3F);
    return evening;
}

class Sea {
public:
    Sea(const Sky& sky, Colour depth, float swell, float focal, float eye, std::uint32_t seed)
        : m_sky{sky}, m_depth{depth}, m_swell{swell}, m_focal{focal}, m_eye{eye}, m_waves{seed} {}

    /// `below` is the distance under the horizon, both in the units of the picture.
    [[nodiscard]] Colour at(float u, float below) const {
        const float z = m_eye * m_focal / std::max(0.0006F, below);
        const float x = u / m_focal * z;
        float slopeX = 0;
        float slopeZ = 0;
        float frequency = 0.09F;
        float strength = 0.14F * m_swell;
        const float resolved = z / m_focal * 0.0005F * (z / m_eye) * 0.25F; // length of a pixel on the water
        for (int octave = 0; octave < 7; ++octave) {
            const float fade = clamp01(1.6F - resolved * frequency * 2.4F);
            if (fade <= 0) break;
            float dx = 0;
            float dz = 0;
            const float turn = static_cast<float>(octave) * 0.7F;
            (void)m_waves.at(x * frequency * (0.55F + 0.05F * turn) + z * frequency * 0.12F * turn,
                             z * frequency - turn * 17, dx, dz);
            slopeX += dx * strength * 0.55F * fade;
            slopeZ += dz * strength * fade;
            frequency *= 1.93F;
            strength *= 0.80F;
        }
        const Vector towards = normalised({u / m_focal, -below / m_focal, 1});
        const Vector normal = normalised({-slopeX, 1, -slopeZ});
        const float facing = std::max(0.02F, -dot(towards, normal));
        Vector mirrored = towards + normal * (2 * facing);
        mirrored.y = std::max(0.012F, mirrored.y);
        mirrored = normalised(mirrored);
        const float away = 1 - std::min(1.0F, facing + 0.03F);
        const float mirror = 0.025F + 0.93F * squared(squared(away)) * away;
        Colour light = mix(m_depth, m_sky.clear(mirrored), mirror);
        // Waves too small to be seen spread the sun into a path.
        const Vector sun = m_sky.look().sun;
        const float aside = mirrored.x / mirrored.z - sun.x / sun.z;
        const float above = mirrored.y - sun.y;
        const float glint = std::exp(-aside * aside * 260 - above * above * 28);
        const float sparkle = 0.25F + 1.5F * clamp01(m_waves.fractal(x * 3.1F, z * 0.9F, 3) + 0.25F);
        light += m_sky.look().sunlight * (glint * sparkle * 0.55F);
        const float far = smoothStep(0.03F, 0.0F, below);
        return mix(light, m_sky.haze(towards), far * 0.75F);
    }

private:
    const Sky& m_sky;
    Colour m_depth;
    float m_swell;
    float m_focal;
    float m_eye;
    Noise m_waves;
};

} // namespace

Picture paintSea(int width, int height, std::uint32_t seed) {
    Random random{seed * std::uint64_t{3} + 1300};
    const Evening evening = eveningOf(random);
    const Sky sky{evening.sky, random.next()};
    const float focal = random.uniform(1.1F, 1.9F);
    const float horizon = random.uniform(-0.04F, 0.16F);
    const Sea sea{sky,   evening.depth,           random.uniform(0.5F, 1.3F),
                  focal, random.uniform(2.2F, 5), random.next()};
    const Noise coast{random.next()};
    const float side = random.chance(0.5F) ? 1.0F : -1.0F;
    const float reach = random.uniform(-0.1F, 0.5F);
    const auto coastAt = [&](float u) {
        const float land = smoothStep(reach, 0.75F, side * u);
        return land * (0.05F + 0.04F * coast.fractal(u * 5, 3, 6)) +
               (land > 0 ? 0.004F * coast.fractal(u * 90, 8, 3) : 0);
    };
    FilmOptions options;
    options.seed = seed;
    options.contrast = 0.45F;
    options.saturation = 1.12F;
    options.exposure = 1.1F;
    return exposeRows(
        Film{width, height, options}, [](float) {},
        [&](float u, float v) {
            const float above = horizon - v;
            const float cliff = coastAt(u);
            if (above <= 0) {
                const Colour water = sea.at(u, -above);
                const float shadow =
                    smoothStep(cliff * 0.9F, cliff * 0.4F, -above) * (cliff > 0.002F ? 0.75F : 0);
                return mix(water, Colour{0.016F, 0.016F, 0.022F}, shadow);
            }
            const Vector direction = normalised({u / focal, above / focal, 1});
            if (above < cliff) {
                const Colour rock =
                    Colour{0.020F, 0.018F, 0.021F} * (1.3F + coast.fractal(u * 40, v * 60, 4));
                return mix(rock, sky.haze(direction), 0.16F);
            }
            return sky.at(direction);
        });
}

} // namespace kelvara::samplecard
