#include "samplecard/Sky.h"
#include "samplecard/scenes/Canvas.h"
#include "samplecard/scenes/Discs.h"
#include "samplecard/scenes/Scenes.h"

#include <array>
#include <cstddef>
#include <vector>

namespace kelvara::samplecard {
namespace {

struct Knot {
    float y;
    float x;
};

/// A smooth curve through knots of rising y.
template <std::size_t count> float curve(const std::array<Knot, count>& knots, float y) {
    if (y <= knots.front().y) return knots.front().x;
    if (y >= knots.back().y) return knots.back().x;
    std::size_t i = 0;
    while (knots[i + 1].y < y) ++i;
    const float t = (y - knots[i].y) / (knots[i + 1].y - knots[i].y);
    const float before = knots[i > 0 ? i - 1 : 0].x;
    const float after = knots[std::min(i + 2, count - 1)].x;
    const float a = knots[i].x;
    const float b = knots[i + 1].x;
    const float t2 = t * t;
    return 0.5F * (2 * a + (b - before) * t + (2 * before - 5 * a + 4 * b - after) * t2 +
                   (3 * a - before - 3 * b + after) * t2 * t);
}

// A head in profile, looking to the left, in heads: the crown is at 0, the chin near 1.
constexpr std::array<Knot, 20> face{
    {{0.00F, 0.02F},   {0.03F, -0.13F},  {0.09F, -0.24F},   {0.18F, -0.315F}, {0.28F, -0.345F},
     {0.36F, -0.352F}, {0.42F, -0.335F}, {0.47F, -0.355F},  {0.53F, -0.395F}, {0.58F, -0.43F},
     {0.61F, -0.405F}, {0.64F, -0.35F},  {0.685F, -0.365F}, {0.72F, -0.335F}, {0.755F, -0.355F},
     {0.80F, -0.315F}, {0.87F, -0.33F},  {0.93F, -0.285F},  {0.985F, -0.14F}, {1.04F, -0.085F}}};
constexpr std::array<Knot, 7> chest{{{1.04F, -0.085F},
                                     {1.20F, -0.09F},
                                     {1.34F, -0.14F},
                                     {1.50F, -0.30F},
                                     {1.75F, -0.44F},
                                     {2.1F, -0.52F},
                                     {2.8F, -0.60F}}};
constexpr std::array<Knot, 13> back{{{0.00F, 0.02F},
                                     {0.03F, 0.18F},
                                     {0.10F, 0.32F},
                                     {0.22F, 0.42F},
                                     {0.38F, 0.455F},
                                     {0.55F, 0.42F},
                                     {0.70F, 0.335F},
                                     {0.85F, 0.27F},
                                     {1.02F, 0.26F},
                                     {1.18F, 0.33F},
                                     {1.34F, 0.58F},
                                     {1.60F, 0.86F},
                                     {2.8F, 1.05F}}};

/// Signed distance to the outline along the row, positive inside; `front` tells which edge is nearer.
float inside(float x, float y, bool& front) {
    if (y < 0) return -1;
    const float left = y < 1.04F ? curve(face, y) : curve(chest, y);
    const float right = curve(back, y);
    front = x - left < right - x;
    return std::min(x - left, right - x);
}

/// A tree with bare branches or a crown, standing on a hill: drawn by growing it.
class Tree {
public:
    Tree(Random& random, float x, float y, float size) {
        grow(random, x, y, -1.57F, size * 0.30F, size * 0.032F, 9);
    }

    void beginRow(float v) {
        m_row.clear();
        for (const Branch& branch : m_branches)
            if (v > std::min(branch.y0, branch.y1) - branch.width &&
                v < std::max(branch.y0, branch.y1) + branch.width)
                m_row.push_back(&branch);
    }
    [[nodiscard]] bool covers(float u, float v) const {
        for (const Branch* branch : m_row) {
            const float dx = branch->x1 - branch->x0;
            const float dy = branch->y1 - branch->y0;
            const float t = clamp01(((u - branch->x0) * dx + (v - branch->y0) * dy) / (dx * dx + dy * dy));
            const float width = branch->width * (1 - 0.35F * t);
            if (squared(u - branch->x0 - dx * t) + squared(v - branch->y0 - dy * t) < width * width)
                return true;
        }
        return false;
    }

private:
    struct Branch {
        float x0, y0, x1, y1, width;
    };

    void grow(Random& random, float x, float y, float angle, float length, float width, int depth) {
        const float endX = x + std::cos(angle) * length;
        const float endY = y + std::sin(angle) * length;
        m_branches.push_back({x, y, endX, endY, std::max(0.0004F, width)});
        if (depth <= 0) return;
        const int twigs = depth > 6 ? 2 : random.integer(2, 3);
        for (int i = 0; i < twigs; ++i) {
            const float turn =
                (static_cast<float>(i) - static_cast<float>(twigs - 1) / 2) * random.uniform(0.4F, 0.75F) +
                random.uniform(-0.15F, 0.15F);
            grow(random, endX, endY, mix(angle + turn, -1.57F, 0.05F), length * random.uniform(0.68F, 0.86F),
                 width * 0.66F, depth - (twigs > 2 ? 2 : 1));
        }
    }

    std::vector<Branch> m_branches;
    std::vector<const Branch*> m_row;
};

struct Dusk {
    Sky::Look sky;
    float focal;
};

Dusk duskOf(Random& random) {
    Dusk dusk{};
    dusk.focal = random.uniform(2.2F, 3.2F);
    Sky::Look& look = dusk.sky;
    look.sun = {random.uniform(-0.12F, 0.12F), random.uniform(0.04F, 0.10F), 1};
    look.showsSun = true;
    look.cover = random.uniform(0.2F, 0.6F);
    look.streaks = 2.4F;
    const bool violet = random.chance(0.4F);
    look.zenith = violet ? Colour{0.12F, 0.11F, 0.34F} : Colour{0.20F, 0.20F, 0.36F};
    look.horizon = violet ? Colour{0.85F, 0.38F, 0.36F} : Colour{1.05F, 0.55F, 0.22F};
    look.glow = {1.7F, 0.75F, 0.20F};
    look.glowWidth = 0.10F;
    look.sunlight = {2.6F, 1.5F, 0.7F};
    look.cloudShade = {0.30F, 0.17F, 0.20F};
    return dusk;
}

Picture bust(int width, int height, std::uint32_t seed, Random& random) {
    Dusk dusk = duskOf(random);
    dusk.sky.cover = 0; // nothing behind is sharp
    dusk.sky.showsSun = false;
    const Sky sky{dusk.sky, random.next()};
    const float size = random.uniform(0.34F, 0.46F);
    const float left = random.uniform(-0.05F, 0.16F);
    const float top = random.uniform(-0.36F, -0.24F);
    const float mirrored = random.chance(0.5F) ? -1.0F : 1.0F;
    const Noise hair{random.next()};
    Discs discs;
    for (int i = 0; i < 60; ++i)
        discs.add({random.uniform(-0.8F, 0.8F), random.uniform(-0.05F, 0.5F), random.uniform(0.015F, 0.06F),
                   Colour{1.0F, 0.55F, 0.2F} * random.uniform(0.04F, 0.28F)});
    FilmOptions options;
    options.seed = seed;
    options.contrast = 0.4F;
    options.vignette = 0.4F;
    return exposeRows(
        Film{width, height, options}, [&](float v) { discs.beginRow(v); },
        [&](float u, float v) {
            const float x = (u * mirrored - left) / size;
            const float y = (v - top) / size;
            const bool nape = x > -0.15F && y < 1.15F;
            const float strands = nape || y < 0.25F ? 0.016F * hair.fractal(x * 30 + y * 8, y * 14, 4)
                                                    : 0.0025F * hair.at(x * 60, y * 60);
            bool front = false;
            const float depth = inside(x, y, front) + strands;
            const float cover = smoothStep(-0.003F, 0.006F, depth);
            const Vector direction = normalised({u / dusk.focal, (0.22F - v) / dusk.focal, 1});
            Colour behind = sky.clear(direction);
            const float blurred = hair.fractal(u * 1.5F + 9, v * 2.5F, 2);
            const float trees = smoothStep(0.10F, 0.26F, v + 0.12F * blurred);
            behind =
                mix(behind, Colour{0.10F, 0.050F, 0.030F} * (1.2F + blurred), trees * 0.85F) + discs.at(u);
            if (cover <= 0) return behind;
            const float rim = std::exp(-std::max(0.0F, depth) * (front ? 60 : 34)) *
                              (0.65F + 0.9F * hair.fractal(x * 40, y * 9, 3));
            const float cloth = y > 1.25F ? 0.5F + hair.fractal(x * 40, y * 40, 3) : 0.3F;
            const Colour body =
                Colour{0.020F, 0.014F, 0.013F} * (1 + cloth) + Colour{0.95F, 0.42F, 0.13F} * (rim * 0.55F);
            return mix(behind, body, cover);
        });
}

Picture tree(int width, int height, std::uint32_t seed, Random& random) {
    const Dusk dusk = duskOf(random);
    const Sky sky{dusk.sky, random.next()};
    const Noise ground{random.next()};
    const float slope = random.uniform(-0.12F, 0.12F);
    const float base = random.uniform(0.18F, 0.28F);
    const auto hill = [&](float u) { return base + slope * u + 0.05F * ground.fractal(u * 1.4F, 4, 4); };
    const float x = random.uniform(-0.28F, 0.28F);
    Tree grown{random, x, hill(x) + 0.01F, random.uniform(0.5F, 0.75F)};
    FilmOptions options;
    options.seed = seed;
    options.contrast = 0.4F;
    options.saturation = 1.1F;
    return exposeRows(
        Film{width, height, options}, [&](float v) { grown.beginRow(v); },
        [&](float u, float v) {
            const Vector direction =
                normalised({u / dusk.focal, std::max(0.0F, base + 0.03F - v) / dusk.focal, 1});
            const float grass =
                0.012F * std::fabs(ground.at(u * 150, 2)) + 0.006F * std::fabs(ground.at(u * 390, 7));
            const float edge = hill(u) - grass;
            if (v > edge) {
                const float blades = ground.fractal(u * 130, v * 45, 4);
                return Colour{0.020F, 0.014F, 0.010F} * (1 + blades) +
                       Colour{0.16F, 0.07F, 0.02F} * (std::exp(-(v - edge) * 26) * (0.45F + blades));
            }
            if (grown.covers(u, v)) return Colour{0.014F, 0.010F, 0.010F};
            const float far = base - 0.035F + 0.03F * ground.fractal(u * 3 + 20, 1, 5);
            if (v > far) return mix(Colour{0.05F, 0.03F, 0.035F}, sky.haze(direction), 0.45F);
            return sky.at(direction);
        });
}

} // namespace

Picture paintSilhouette(int width, int height, std::uint32_t seed) {
    Random random{seed * std::uint64_t{3} + 3700};
    return seed % 2 == 1 ? bust(width, height, seed, random) : tree(width, height, seed, random);
}

} // namespace kelvara::samplecard
