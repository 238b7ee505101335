#include "samplecard/Noise.h"
#include "samplecard/scenes/Canvas.h"
#include "samplecard/scenes/Discs.h"
#include "samplecard/scenes/Scenes.h"

namespace kelvara::samplecard {
namespace {

constexpr float circle = 6.2831853F;

struct Look {
    Colour petal;
    Colour throat; // towards the middle
    Colour heart;
    Colour garden; // the blurred green behind
};

Look lookOf(Random& random) {
    switch (random.integer(0, 4)) {
    case 0:
        return {{0.86F, 0.86F, 0.84F}, {0.72F, 0.74F, 0.60F}, {0.72F, 0.42F, 0.02F}, {0.07F, 0.13F, 0.03F}};
    case 1:
        return {{0.80F, 0.10F, 0.22F}, {0.45F, 0.02F, 0.10F}, {0.42F, 0.30F, 0.04F}, {0.05F, 0.11F, 0.05F}};
    case 2:
        return {{0.85F, 0.46F, 0.02F}, {0.72F, 0.18F, 0.01F}, {0.10F, 0.045F, 0.015F}, {0.06F, 0.12F, 0.04F}};
    case 3:
        return {{0.45F, 0.28F, 0.75F}, {0.24F, 0.10F, 0.48F}, {0.70F, 0.48F, 0.05F}, {0.09F, 0.13F, 0.05F}};
    default:
        return {{0.90F, 0.50F, 0.60F}, {0.80F, 0.22F, 0.36F}, {0.66F, 0.52F, 0.08F}, {0.10F, 0.14F, 0.08F}};
    }
}

class Flower {
public:
    Flower(const Look& look, Random& random, float size, float pixel)
        : m_look{look}, m_size{size}, m_pixel{pixel / size}, m_turn{random.uniform(0, circle)},
          m_flat{random.uniform(0.68F, 0.95F)}, m_lean{random.uniform(-0.5F, 0.5F)}, m_petals{random.integer(
                                                                                         11, 21)},
          m_rings{random.integer(2, 3)}, m_noise{random.next()}, m_seed{random.next()} {}

    /// `cover` is how much of what is behind is hidden.
    Colour at(float x, float y, float& cover) const {
        x /= m_size;
        y /= m_size;
        const float turnedX = x * std::cos(m_lean) - y * std::sin(m_lean);
        const float turnedY = (x * std::sin(m_lean) + y * std::cos(m_lean)) / m_flat;
        const float radius = std::sqrt(turnedX * turnedX + turnedY * turnedY);
        cover = 0;
        if (radius > 1.12F) return {};
        const float angle = std::atan2(turnedY, turnedX) + m_turn;
        Colour light;
        if (radius < heartRadius * 1.12F) {
            const float rim = heartRadius * (1 + 0.035F * m_noise.at(angle * 14, 3));
            cover = smoothStep(rim, rim - std::max(0.012F, 2 * m_pixel), radius);
            if (cover > 0) light = heart(turnedX, turnedY, radius, angle);
        }
        for (int ring = 0; ring < m_rings && cover < 0.995F; ++ring) {
            float own = 0;
            const Colour petal = ringAt(ring, radius, angle, own);
            light = light * cover + petal * (own * (1 - cover));
            const float both = cover + own * (1 - cover);
            if (both > 0) light = light * (1 / both);
            cover = both;
        }
        return light;
    }

private:
    static constexpr float heartRadius = 0.25F;

    /// Florets along the two families of spirals of a seed head.
    [[nodiscard]] Colour heart(float x, float y, float radius, float angle) const {
        const float spread = 26 * std::sqrt(radius / heartRadius);
        const float first = std::sin((angle * 21 / circle + spread * 0.55F) * 3.14159265F);
        const float second = std::sin((angle * 34 / circle - spread * 0.75F) * 3.14159265F);
        const float bump = std::fabs(first * second);
        const float grain = m_noise.fractal(x * 60, y * 60, 3);
        const float dome = std::sqrt(std::max(0.05F, 1 - squared(radius / heartRadius) * 0.85F));
        const float lit = 0.55F + 0.45F * dome - 0.35F * (x * 0.7F + y) / heartRadius * 0.5F;
        const Colour tone =
            mix(m_look.heart * 0.35F, m_look.heart * 1.25F, clamp01(0.15F + bump * 0.95F + grain * 0.5F));
        return tone * std::max(0.1F, lit);
    }

    [[nodiscard]] Colour ringAt(int ring, float radius, float angle, float& cover) const {
        const float shift =
            static_cast<float>(ring) * 0.5F / static_cast<float>(m_rings) + 0.13F * static_cast<float>(ring);
        const float place = angle / circle * static_cast<float>(m_petals) + shift * 2 + 200;
        const float index = std::floor(place);
        Colour light;
        cover = 0;
        // Petals are wider than their share of the circle: the neighbour on either side may lie on top.
        for (int neighbour = -1; neighbour <= 1 && cover < 0.99F; ++neighbour) {
            const int petal = (static_cast<int>(index) + neighbour) % m_petals;
            const float length =
                (0.86F + 0.12F * static_cast<float>(ring)) * (0.90F + 0.14F * hash01(petal, ring, m_seed));
            const float along = (radius - 0.12F) / (length - 0.12F);
            if (along < 0 || along > 1.01F) continue;
            const float sway = (hash01(petal, ring, m_seed + 1) - 0.5F) * 0.5F +
                               0.25F * (hash01(petal, ring, m_seed + 2) - 0.5F) * along;
            const float aside = (place - index - static_cast<float>(neighbour) - 0.5F - sway) * circle /
                                static_cast<float>(m_petals) * radius;
            const float tip = 1 - squared(squared(along)) * along;
            const float half = (0.055F + 0.115F * along) * std::sqrt(std::max(0.0F, tip)) * 14.0F /
                                   static_cast<float>(m_petals) +
                               0.006F;
            const float across = aside / half;
            if (std::fabs(across) >= 1.02F) continue;
            const float edge = std::max(0.02F, 1.5F * m_pixel / half);
            const float own = smoothStep(1.0F, 1.0F - edge, std::fabs(across)) * (1 - cover);
            light += petalLight(ring, petal, along, across, radius) * own;
            cover += own;
        }
        return cover > 0 ? light * (1 / cover) : light;
    }

    [[nodiscard]] Colour petalLight(int ring, int petal, float along, float across, float radius) const {
        const float offset = static_cast<float>(petal * 7 + ring * 3);
        const float veins = m_noise.fractal(across * 7 + offset, along * 1.3F + offset, 4);
        const float fine = m_noise.fractal(across * 30 + offset, along * 9, 3);
        const float fold = 1 - 0.55F * across * across + 0.18F * across;
        const float groove = 0.10F * std::exp(-squared(across * 7));
        const float shaded = smoothStep(heartRadius * 0.9F, heartRadius * 1.55F, radius); // by the heart
        const float under = ring == 0 ? 1.0F : 0.80F - 0.16F * static_cast<float>(ring); // by the ring on top
        const Colour tone = mix(m_look.throat, m_look.petal, smoothStep(0.05F, 0.75F, along + 0.25F * veins));
        const float light = (0.50F + 0.52F * fold - groove) * (0.45F + 0.55F * shaded) * under *
                            (1 + 0.22F * veins + 0.10F * fine) *
                            (0.88F + 0.24F * hash01(petal, ring, m_seed + 3));
        return tone * std::max(0.03F, light);
    }

    Look m_look;
    float m_size;
    float m_pixel;
    float m_turn;
    float m_flat;
    float m_lean;
    int m_petals;
    int m_rings;
    Noise m_noise;
    std::uint32_t m_seed;
};

} // namespace

Picture paintFlower(int width, int height, std::uint32_t seed) {
    Random random{seed * std::uint64_t{3} + 2900};
    const Look look = lookOf(random);
    const float size = random.uniform(0.27F, 0.44F);
    const Flower flower{look, random, size, pixelOf(width, height)};
    const float centreX = random.uniform(-0.18F, 0.18F);
    const float centreY = random.uniform(-0.10F, 0.06F);
    const float bow = random.uniform(-0.25F, 0.25F);
    const Noise blur{random.next()};
    Discs discs;
    for (int i = 0; i < 46; ++i) {
        const Colour tint = random.chance(0.6F)   ? Colour{0.5F, 0.62F, 0.20F}
                            : random.chance(0.6F) ? look.petal
                                                  : Colour{0.9F, 0.85F, 0.6F};
        discs.add({random.uniform(-0.75F, 0.75F), random.uniform(-0.6F, 0.6F), random.uniform(0.025F, 0.085F),
                   tint * random.uniform(0.03F, 0.16F)});
    }
    FilmOptions options;
    options.seed = seed;
    options.contrast = 0.4F;
    options.exposure = 1.15F;
    options.vignette = 0.35F;
    return exposeRows(
        Film{width, height, options}, [&](float v) { discs.beginRow(v); },
        [&](float u, float v) {
            float cover = 0;
            const Colour petals = flower.at(u - centreX, v - centreY, cover);
            if (cover > 0.999F) return petals;
            const float soft = blur.fractal(u * 1.7F, v * 1.7F, 2);
            const float tint = blur.at(u * 2.6F + 31, v * 2.6F);
            Colour behind = look.garden * (1.1F + 1.3F * soft - 0.7F * v) +
                            Colour{0.10F, 0.11F, 0.02F} * std::max(0.0F, tint * 0.8F - v * 0.5F);
            behind += look.petal * (0.18F * smoothStep(0.35F, 0.75F, blur.at(u * 2.1F + 60, v * 2.3F)));
            behind += discs.at(u);
            if (v > centreY) {
                const float stem = centreX + bow * squared(v - centreY);
                const float across = (u - stem) / (0.035F * size * 1.6F);
                const float solid = smoothStep(1.15F, 0.8F, std::fabs(across));
                const float round =
                    0.5F + 0.5F * std::sqrt(std::max(0.0F, 1 - across * across)) - 0.25F * across;
                behind = mix(behind,
                             Colour{0.10F, 0.17F, 0.035F} *
                                 (round * (1 + 0.3F * blur.fractal(u * 160, v * 30, 3))),
                             solid);
            }
            return mix(behind, petals, cover);
        });
}

} // namespace kelvara::samplecard
