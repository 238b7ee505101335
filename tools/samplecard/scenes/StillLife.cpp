#include "samplecard/Noise.h"
#include "samplecard/Sky.h"
#include "samplecard/scenes/Canvas.h"
#include "samplecard/scenes/Scenes.h"

#include <array>
#include <vector>

namespace kelvara::samplecard {
namespace {

struct Ball {
    enum class Skin { smooth, citrus, apple, metal };

    Vector centre;
    float radius = 1;
    Colour colour;
    Skin skin = Skin::smooth;
};

struct Hit {
    float distance = 1e9F;
    const Ball* ball = nullptr; // null with a distance: the table
    Vector point;
    Vector normal;
};

Vector reflected(Vector direction, Vector normal) {
    return direction - normal * (2 * dot(direction, normal));
}

/// Fruit and balls on a wooden table by a window.
class Table {
public:
    explicit Table(Random& random) : m_grain{random.next()}, m_skin{random.next()} {
        const float side = random.chance(0.5F) ? 1.0F : -1.0F;
        m_window = normalised(
            {side * random.uniform(0.6F, 0.9F), random.uniform(0.55F, 0.8F), random.uniform(-0.5F, 0.1F)});
        m_wood = random.chance(0.5F) ? Colour{0.30F, 0.17F, 0.085F} : Colour{0.16F, 0.10F, 0.065F};
        m_wall = random.chance(0.5F)   ? Colour{0.16F, 0.17F, 0.18F}
                 : random.chance(0.5F) ? Colour{0.27F, 0.24F, 0.20F}
                                       : Colour{0.07F, 0.10F, 0.11F};
        static constexpr std::array colours{Colour{0.80F, 0.30F, 0.02F}, Colour{0.58F, 0.035F, 0.03F},
                                            Colour{0.36F, 0.46F, 0.05F}, Colour{0.82F, 0.58F, 0.06F},
                                            Colour{0.70F, 0.68F, 0.62F}, Colour{0.12F, 0.16F, 0.30F}};
        const int wanted = random.integer(4, 7);
        for (int attempt = 0; attempt < 200 && static_cast<int>(m_balls.size()) < wanted; ++attempt) {
            Ball ball;
            ball.radius = random.uniform(0.26F, 0.56F);
            ball.centre = {random.uniform(-1.9F, 1.9F), ball.radius, random.uniform(4.4F, 6.6F)};
            bool free = true;
            for (const Ball& other : m_balls) {
                const Vector between = ball.centre - other.centre;
                free = free && dot(between, between) > squared(ball.radius + other.radius);
            }
            if (!free) continue;
            const int kind = random.integer(0, 5);
            ball.colour = colours[static_cast<std::size_t>(kind)];
            ball.skin = kind == 0 || kind == 3   ? Ball::Skin::citrus
                        : kind == 1 || kind == 2 ? Ball::Skin::apple
                        : kind == 4              ? Ball::Skin::smooth
                                                 : Ball::Skin::metal;
            m_balls.push_back(ball);
        }
    }

    [[nodiscard]] Colour seen(Vector from, Vector direction) const {
        const Hit hit = nearest(from, direction);
        if (hit.distance > 1e8F) return wall(direction);
        return hit.ball ? ballLight(hit, direction) : tableLight(hit, direction);
    }

private:
    [[nodiscard]] Hit nearest(Vector from, Vector direction) const {
        Hit hit;
        if (direction.y < -1e-4F) {
            const float distance = -from.y / direction.y;
            if (distance > 1e-3F && distance < 16)
                hit = {distance, nullptr, from + direction * distance, {0, 1, 0}};
        }
        for (const Ball& ball : m_balls) {
            const Vector to = ball.centre - from;
            const float along = dot(to, direction);
            const float square = dot(to, to) - along * along;
            if (along <= 0 || square >= ball.radius * ball.radius) continue;
            const float distance = along - std::sqrt(ball.radius * ball.radius - square);
            if (distance < 1e-3F || distance >= hit.distance) continue;
            const Vector point = from + direction * distance;
            hit = {distance, &ball, point, (point - ball.centre) * (1 / ball.radius)};
        }
        return hit;
    }

    /// How much of the window a point sees: soft, as the window is large.
    [[nodiscard]] float windowSeen(Vector point, const Ball* own) const {
        float seen = 1;
        for (const Ball& ball : m_balls) {
            if (&ball == own) continue;
            const Vector to = ball.centre - point;
            const float along = dot(to, m_window);
            if (along <= 0) continue;
            const float miss = std::sqrt(std::max(0.0F, dot(to, to) - along * along));
            const float blur = 0.04F + 0.20F * along;
            seen *= 1 - smoothStep(ball.radius + blur, ball.radius - blur, miss);
        }
        return seen;
    }

    /// What the balls leave of the light from all around.
    [[nodiscard]] float roomSeen(Vector point, Vector normal, const Ball* own) const {
        float seen = 1;
        for (const Ball& ball : m_balls) {
            if (&ball == own) continue;
            const Vector to = ball.centre - point;
            const float square = dot(to, to);
            const float facing = std::max(0.0F, dot(normal, to)) / std::sqrt(square);
            seen *= 1 - facing * std::min(1.0F, ball.radius * ball.radius / square);
        }
        return seen;
    }

    [[nodiscard]] Colour wall(Vector direction) const {
        const float towards = std::max(0.0F, m_window.x * direction.x * 1.2F + 0.35F);
        const float cloth = m_grain.fractal(direction.x * 5, direction.y * 4, 4);
        return m_wall * (0.30F + 1.0F * towards + 0.10F * cloth + 0.4F * direction.y);
    }

    /// Mirrored light: the window itself as a soft square, else the room.
    [[nodiscard]] Colour room(Vector direction) const {
        const Vector across = normalised({m_window.z, 0, -m_window.x});
        const float aside = dot(direction, across);
        const float up = direction.y - m_window.y;
        const float front = dot(direction, m_window);
        const float frame = front <= 0 ? 0
                                       : smoothStep(0.27F, 0.24F, std::fabs(aside)) *
                                             smoothStep(0.24F, 0.21F, std::fabs(up)) *
                                             smoothStep(0.008F, 0.018F, std::fabs(aside)) *
                                             smoothStep(0.008F, 0.018F, std::fabs(up));
        return wall(direction) + Colour{5.0F, 5.2F, 5.5F} * frame;
    }

    [[nodiscard]] Colour lightOn(Vector point, Vector normal, const Ball* own) const {
        const float direct = std::max(0.0F, dot(normal, m_window) * 0.9F + 0.1F) * windowSeen(point, own);
        const float around = roomSeen(point, normal, own) * (0.6F + 0.4F * normal.y);
        const float bounced = std::max(0.0F, -normal.y) * 0.30F;
        return Colour{2.1F, 2.05F, 1.95F} * direct + Colour{0.20F, 0.21F, 0.23F} * around + m_wood * bounced;
    }

    [[nodiscard]] Colour tableLight(const Hit& hit, Vector direction) const {
        const float x = hit.point.x;
        const float z = hit.point.z;
        const float plank = std::floor(z / 0.9F);
        const float shift = plank * 37;
        const float rings = m_grain.fractal(x * 0.7F + shift, z * 5 + shift, 4);
        const float fibres = m_grain.fractal(x * 6 + shift, z * 90, 4);
        const float band = std::sin((z * 3 + rings * 2.4F) * 14);
        Colour wood = m_wood * (0.85F + 0.25F * hash01(static_cast<int>(plank), 3, 5) + 0.16F * band +
                                0.5F * fibres + 0.3F * rings);
        const float inPlank = z / 0.9F - plank;
        wood = wood * smoothStep(0.0F, 0.018F, std::min(inPlank, 1 - inPlank));
        const Vector mirrored = reflected(direction, normalised({0.02F * fibres, 1, 0.05F * fibres}));
        const Hit second = nearest(hit.point, mirrored);
        const Colour image = second.ball
                                 ? second.ball->colour * lightOn(second.point, second.normal, second.ball)
                                 : wall(mirrored);
        const float grazing = 1 - std::fabs(direction.y);
        const float mirror = 0.03F + 0.45F * squared(squared(grazing));
        const float far = smoothStep(7, 14, hit.distance);
        return mix(mix(wood * lightOn(hit.point, hit.normal, nullptr), image, mirror), wall(direction), far);
    }

    [[nodiscard]] Colour ballLight(const Hit& hit, Vector direction) const {
        const Ball& ball = *hit.ball;
        const Vector surface = (hit.point - ball.centre) * (1 / ball.radius);
        Vector normal = hit.normal;
        Colour colour = ball.colour;
        float gloss = 0.05F;
        const float longitude = std::atan2(surface.z, surface.x) * 2;
        if (ball.skin == Ball::Skin::citrus) {
            float dx = 0;
            float dy = 0;
            (void)m_skin.at(surface.x * 26 + surface.z * 17 + ball.radius * 99,
                            surface.y * 30 - surface.z * 9, dx, dy);
            normal = normalised(normal + Vector{dx, dy, dx * 0.5F} * 0.035F);
            colour = colour * (1 + 0.16F * m_skin.fractal(surface.x * 3, surface.y * 3 + surface.z, 3));
        } else if (ball.skin == Ball::Skin::apple) {
            const float streaks = m_skin.fractal(longitude * 6, surface.y * 1.4F + ball.radius * 50, 4);
            const float blush = smoothStep(-0.5F, 0.6F, surface.y + 0.8F * m_skin.at(longitude, surface.y));
            colour = mix(colour, Colour{0.62F, 0.46F, 0.10F}, clamp01(blush * 0.5F + streaks * 0.8F));
            const float specks = m_skin.at(longitude * 16, surface.y * 40 + 7);
            colour = mix(colour, {0.7F, 0.6F, 0.35F}, smoothStep(0.80F, 0.92F, specks) * 0.6F);
            gloss = 0.10F;
        } else if (ball.skin == Ball::Skin::metal) {
            gloss = 0.55F;
        } else {
            colour = colour * (1 + 0.10F * m_skin.fractal(surface.x * 9, surface.y * 9 + surface.z * 4, 4));
        }
        const Vector mirrored = reflected(direction, normal);
        const Hit second = nearest(hit.point, mirrored);
        const Colour image = second.distance > 1e8F ? room(mirrored)
                                                    : (second.ball ? second.ball->colour : m_wood) *
                                                          lightOn(second.point, second.normal, second.ball);
        const float grazing = 1 - std::max(0.0F, -dot(direction, normal));
        const float mirror = gloss + (1 - gloss) * 0.7F * squared(squared(grazing)) * grazing;
        return mix(colour * lightOn(hit.point, normal, &ball), image, mirror);
    }

    Noise m_grain;
    Noise m_skin;
    Vector m_window;
    Colour m_wood;
    Colour m_wall;
    std::vector<Ball> m_balls;
};

} // namespace

Picture paintStillLife(int width, int height, std::uint32_t seed) {
    Random random{seed * std::uint64_t{3} + 3300};
    const Table table{random};
    const Vector eye{random.uniform(-0.3F, 0.3F), random.uniform(1.3F, 2.0F), 0};
    const float pitch = (eye.y - 0.35F) / 5.4F;
    const float focal = random.uniform(1.25F, 1.6F);
    FilmOptions options;
    options.seed = seed;
    options.contrast = 0.4F;
    options.vignette = 0.35F;
    return exposeRows(
        Film{width, height, options}, [](float) {},
        [&](float u, float v) {
            return table.seen(eye, normalised({u / focal, -v / focal - pitch, 1}));
        });
}

} // namespace kelvara::samplecard
