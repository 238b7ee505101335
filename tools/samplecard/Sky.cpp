#include "samplecard/Sky.h"

namespace kelvara::samplecard {

Sky::Sky(const Look& look, std::uint32_t seed) : m_look{look}, m_shape{seed}, m_warp{seed + 1} {
    m_look.sun = normalised(look.sun);
}

Colour Sky::clear(Vector direction) const {
    const float up = std::max(0.0F, direction.y);
    // Air thins out quickly with the angle above the horizon.
    const float thick = 1 / (1 + 4.5F * up) * (1 - 0.35F * up);
    Colour light = mix(m_look.zenith, m_look.horizon, squared(thick));
    const float towards = std::max(0.0F, dot(direction, m_look.sun));
    const float angle = 1 - towards;
    const float wide = m_look.glowWidth / (m_look.glowWidth + angle * 9);
    light += m_look.glow * (squared(wide) * (0.35F + 0.65F * thick));
    if (m_look.showsSun) {
        light += m_look.sunlight * (0.25F / (1 + angle * 900));
        light += m_look.sunlight * (9 * smoothStep(0.00009F, 0.00003F, angle));
    }
    return light;
}

Colour Sky::haze(Vector direction) const {
    const Vector level = normalised({direction.x, 0.02F, direction.z});
    return clear(level);
}

Colour Sky::at(Vector direction) const {
    const Colour light = clear(direction);
    if (direction.y < 0.004F || m_look.cover <= 0) return light;
    // The layer is a plane overhead; the offset stands for the curve of the earth.
    const float distance = 1 / (direction.y + 0.06F);
    const float scale = 0.75F / m_look.cloudSize;
    const float x = direction.x * distance * scale / m_look.streaks;
    const float z = direction.z * distance * scale;
    const float bend = m_warp.at(x * 0.9F, z * 0.9F);
    const float field = m_shape.fractal(x + bend * 0.55F, z + bend * 0.3F, 7);
    const float threshold = 0.34F - 0.62F * m_look.cover;
    const float density = smoothStep(threshold, threshold + 0.38F, field);
    if (density <= 0) return light;
    // Lit where there is less cloud on the way to the sun.
    const float towards = 0.22F;
    const float nearer = m_shape.fractal(x + bend * 0.55F + m_look.sun.x * towards / m_look.streaks,
                                         z + bend * 0.3F + m_look.sun.z * towards, 4);
    const float lit = clamp01(0.55F + (field - nearer) * 1.5F - density * 0.38F);
    const float beside = std::max(0.0F, dot(direction, m_look.sun));
    const float lining = squared(squared(beside)) * squared(beside) * (1 - density) * 0.9F;
    Colour cloud = mix(m_look.cloudShade, m_look.sunlight * 0.62F, lit);
    cloud += m_look.sunlight * lining;
    // Far clouds drown in the haze.
    const float seen = smoothStep(0.0F, 0.16F, direction.y);
    cloud = mix(light, cloud, 0.25F + 0.75F * seen);
    return mix(light, cloud, density * (0.55F + 0.45F * seen));
}

} // namespace kelvara::samplecard
