#include "samplecard/scenes/Hour.h"
#include "samplecard/scenes/Landscape.h"
#include "samplecard/scenes/Scenes.h"

#include <cmath>

namespace kelvara::samplecard {
namespace {

/// Eroded peaks around a valley that opens towards the camera.
class Alps : public Land {
public:
    struct Shape {
        float relief = 2.2F;
        float size = 5;   ///< of a massif
        float valley = 4; ///< how far it reaches
        float base = 0;   ///< height of its floor
        float snowLine = 1.3F;
        float treeLine = 0.75F;
        Colour grass{0.085F, 0.115F, 0.032F};
        Colour wood{0.022F, 0.042F, 0.018F};
    };

    Alps(const Shape& shape, std::uint32_t seed)
        : m_shape{shape}, m_form{seed}, m_detail{seed + 3}, m_path{seed + 5} {}

    [[nodiscard]] float height(float x, float z, float footprint) const override {
        const float bend = m_path.at(z * 0.16F, 0.5F) * std::min(1.6F, z * 0.4F);
        const float aside = std::fabs(x - bend) / (0.5F + 0.2F * z);
        const float raised = std::max(smoothStep(m_shape.valley, m_shape.valley * 3.2F, z),
                                      0.62F * smoothStep(0.5F, 2.4F, aside) * smoothStep(0.6F, 2.6F, z));
        float px = x / m_shape.size;
        float pz = z / m_shape.size;
        float wavelength = m_shape.size;
        float strength = 0.5F;
        float sum = 0;
        float slopeX = 0;
        float slopeZ = 0;
        for (int octave = 0; octave < 11 && wavelength > footprint * 2.2F; ++octave) {
            float dx = 0;
            float dz = 0;
            const float value = m_form.at(px, pz, dx, dz);
            slopeX += dx;
            slopeZ += dz;
            // Detail settles on the gentle parts and washes off the steep ones.
            sum += strength * value / (1 + 0.65F * (slopeX * slopeX + slopeZ * slopeZ));
            strength *= 0.5F;
            wavelength *= 0.5F;
            const float turned = 1.6F * px - 1.2F * pz;
            pz = 1.2F * px + 1.6F * pz;
            px = turned;
        }
        const float peak = std::max(0.0F, sum + 0.30F);
        return m_shape.base + raised * m_shape.relief * (0.15F + 1.5F * peak) +
               (1 - raised) * 0.10F * sum * smoothStep(0.5F, 3.0F, z);
    }

    [[nodiscard]] Colour ground(Vector point, Vector normal, float footprint) const override {
        const int octaves = footprint < 0.002F ? 6 : footprint < 0.008F ? 5 : 4;
        const float patch = m_detail.fractal(point.x * 2.2F, point.z * 2.2F, octaves);
        const float fine = m_detail.fractal(point.x * 45, point.z * 45 + point.y * 30, 3);
        Colour rock =
            mix(Colour{0.115F, 0.105F, 0.098F}, Colour{0.20F, 0.175F, 0.15F}, clamp01(0.5F + patch * 1.2F));
        const float strata = m_detail.at(point.y * 22 + patch * 2, point.x * 0.4F);
        rock = rock * (0.85F + 0.22F * strata + 0.45F * fine);
        const float gentle = normal.y;
        const float green =
            smoothStep(0.55F, 0.75F, gentle + patch * 0.25F) *
            smoothStep(m_shape.treeLine * 1.7F, m_shape.treeLine * 1.25F, point.y + patch * 0.5F);
        Colour colour = mix(rock, m_shape.grass * (0.8F + 0.5F * fine + 0.6F * patch), green);
        const float wooded =
            smoothStep(0.02F, 0.18F, patch + 0.12F - 0.5F * squared(point.y / m_shape.treeLine)) *
            smoothStep(m_shape.treeLine * 1.25F, m_shape.treeLine * 0.85F, point.y + patch * 0.3F) *
            smoothStep(0.45F, 0.6F, gentle);
        if (wooded > 0) {
            const float crowns =
                m_detail.at(point.x * 75, point.z * 75) + 0.7F * m_detail.at(point.x * 31, point.z * 31);
            colour = mix(colour, m_shape.wood * (1 + 0.75F * crowns), wooded);
        }
        const float snow = smoothStep(-0.12F, 0.2F, point.y - m_shape.snowLine + patch * 0.7F) *
                           smoothStep(0.50F, 0.68F, gentle + fine * 0.22F + patch * 0.1F);
        return mix(colour, {0.80F, 0.83F, 0.88F}, snow);
    }

private:
    Shape m_shape;
    Noise m_form;
    Noise m_detail;
    Noise m_path;
};

Picture view(int width, int height, std::uint32_t seed, bool lake) {
    Random random{seed * 2ULL + (lake ? 1 : 0)};
    const Hour hour = hourOf(random);
    const Sky sky{hour.sky, random.next()};

    Alps::Shape shape;
    shape.relief = random.uniform(1.7F, 2.6F);
    shape.size = random.uniform(4.2F, 6.5F);
    shape.valley = random.uniform(2.5F, 5);
    shape.snowLine = random.uniform(0.7F, 1.7F);
    shape.treeLine = random.uniform(0.55F, 0.95F);
    if (random.chance(0.3F)) { // autumn
        shape.grass = {0.16F, 0.115F, 0.035F};
        shape.wood = {0.085F, 0.048F, 0.014F};
    }
    Viewpoint viewpoint;
    viewpoint.focal = random.uniform(0.8F, 1.5F);
    viewpoint.haze = hour.haze;
    viewpoint.sunlight = hour.sunlight;
    viewpoint.skylight = hour.skylight;
    if (lake) {
        shape.base = -0.03F;
        shape.valley = random.uniform(2.0F, 3.2F);
        viewpoint.water = 0.0F;
        viewpoint.eye = random.uniform(0.012F, 0.03F);
        viewpoint.nearest = 0.02F;
        viewpoint.horizon = random.uniform(0.48F, 0.60F);
        viewpoint.ripples = random.uniform(0.15F, 0.8F);
    } else {
        viewpoint.eye = random.uniform(0.55F, 1.1F);
        viewpoint.nearest = 0.35F;
        viewpoint.horizon = random.uniform(0.36F, 0.52F);
    }
    if (height > width) viewpoint.focal *= 1.3F;
    const Alps alps{shape, random.next()};

    FilmOptions film;
    film.seed = seed;
    film.contrast = random.uniform(0.35F, 0.55F);
    film.saturation = random.uniform(1.05F, 1.2F);
    film.exposure = random.uniform(0.95F, 1.1F);
    Film exposure{width, height, film};
    paintLandscape(exposure, alps, sky, viewpoint, random.next());
    return std::move(exposure).developed();
}

} // namespace

Picture paintMountains(int width, int height, std::uint32_t seed) { return view(width, height, seed, false); }

Picture paintLake(int width, int height, std::uint32_t seed) { return view(width, height, seed, true); }

} // namespace kelvara::samplecard
