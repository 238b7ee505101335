#include "samplecard/Noise.h"
#include "samplecard/scenes/Canvas.h"
#include "samplecard/scenes/Scenes.h"

#include <vector>

namespace kelvara::samplecard {
namespace {

struct Season {
    Colour leaf;
    Colour lit; // leaves with the sun behind them
    Colour floor;
    Colour path;
    Colour mist;
};

Season seasonOf(Random& random) {
    switch (random.integer(0, 2)) {
    case 0: // summer
        return {{0.030F, 0.065F, 0.012F},
                {0.30F, 0.46F, 0.07F},
                {0.055F, 0.085F, 0.022F},
                {0.20F, 0.155F, 0.10F},
                {0.62F, 0.72F, 0.42F}};
    case 1: // autumn
        return {{0.085F, 0.042F, 0.012F},
                {0.80F, 0.36F, 0.05F},
                {0.17F, 0.085F, 0.028F},
                {0.21F, 0.14F, 0.085F},
                {0.95F, 0.72F, 0.42F}};
    default: // cool morning fog
        return {{0.024F, 0.045F, 0.022F},
                {0.16F, 0.25F, 0.10F},
                {0.045F, 0.060F, 0.028F},
                {0.13F, 0.115F, 0.095F},
                {0.62F, 0.68F, 0.70F}};
    }
}

struct Trunk {
    float x;
    float width;
    float lean;
    std::uint32_t seed;
    // Where it is in the row being painted.
    float centre = 0;
    float perHalf = 0;
};

struct Layer {
    float depth; // metres
    float fog;   // 0 to 1
    std::vector<Trunk> trunks;
};

class Forest {
public:
    Forest(Random& random)
        : m_season{seasonOf(random)}, m_horizon{random.uniform(-0.02F, 0.10F)},
          m_sunX{random.uniform(-0.25F, 0.25F)}, m_bend{random.uniform(-1.0F, 1.0F)}, m_noise{random.next()} {
        constexpr int count = 11;
        const float mist = random.uniform(0.020F, 0.042F);
        for (int i = 0; i < count; ++i) {
            Layer layer{};
            layer.depth = 4.2F * std::pow(1.33F, static_cast<float>(i));
            layer.fog = 1 - std::exp(-layer.depth * mist);
            const int trees = 3 + i * 2;
            for (int tree = 0; tree < trees; ++tree) {
                const float x =
                    (static_cast<float>(tree) + random.uniform(0.1F, 0.9F)) / static_cast<float>(trees) * 2 -
                    1;
                const float width = random.uniform(0.14F, 0.36F) / layer.depth;
                // Nothing stands on the path.
                if (std::fabs(x - pathAt(layer.depth)) < 1.35F / layer.depth + width) continue;
                layer.trunks.push_back({x, width, random.uniform(-0.06F, 0.06F), random.next(), 0, 0});
            }
            m_layers.push_back(std::move(layer));
        }
    }

    void beginRow(float v) {
        const float below = v - m_horizon;
        for (Layer& layer : m_layers) {
            for (Trunk& trunk : layer.trunks) {
                trunk.centre =
                    trunk.x + trunk.lean * below + 0.1F * trunk.width * m_noise.at(v * 5, trunk.x * 40);
                const float flare =
                    1 + 0.9F * squared(squared(smoothStep(-0.05F, 1.6F / layer.depth, below)));
                trunk.perHalf = 2 / (trunk.width * flare);
            }
        }
    }

    [[nodiscard]] Colour at(float u, float v) const {
        float opaque = 0; // of the leaves in front of what follows
        Colour light;
        const float below = v - m_horizon;
        const float ground =
            below > 0 ? 1.6F / std::max(0.004F, below) : 1e6F; // depth where the ray meets it
        const Colour veil = mistAt(u, v);
        for (const Layer& layer : m_layers) {
            if (layer.depth > ground) break;
            const float cover = leavesAt(u, v, layer);
            if (cover > 0) {
                light += mix(leafAt(u, v, layer), veil, layer.fog) * (cover * (1 - opaque));
                opaque += cover * (1 - opaque);
                if (opaque > 0.97F) return light;
            }
            for (const Trunk& trunk : layer.trunks) {
                const float across = (u - trunk.centre) * trunk.perHalf;
                if (std::fabs(across) >= 1) continue;
                return light + mix(barkAt(u, v, across, layer, trunk), veil, layer.fog) * (1 - opaque);
            }
        }
        if (below > 0) return light + groundAt(u, ground) * (1 - opaque);
        return light + backdrop(u, v) * (1 - opaque);
    }

private:
    [[nodiscard]] float pathAt(float depth) const {
        return m_bend * 0.5F * std::sin(depth * 0.11F) * std::min(1.0F, depth * 0.05F) * 0.5F;
    }

    [[nodiscard]] Colour mistAt(float u, float v) const {
        const float towards = std::exp(-(squared(u - m_sunX) * 3.5F + squared(v + 0.18F) * 4));
        return m_season.mist * (0.30F + 1.1F * towards);
    }

    [[nodiscard]] Colour backdrop(float u, float v) const {
        const float foliage = m_noise.fractal(u * 14, v * 14, 5);
        return mistAt(u, v) * (0.92F + 0.5F * foliage);
    }

    [[nodiscard]] float leavesAt(float u, float v, const Layer& layer) const {
        const float size = layer.depth * 0.55F;
        const float seedOffset = layer.depth * 13.7F;
        // Crowns above, undergrowth at the foot; free in between.
        const float high = smoothStep(-0.02F, -0.62F, v - m_horizon + 0.5F / layer.depth) * 0.62F;
        const float foot = 1.35F / layer.depth;
        const float low =
            smoothStep(foot - 0.16F / layer.depth * 3, foot + 0.05F, v - m_horizon) *
            smoothStep(0.9F / layer.depth, 2.2F / layer.depth, std::fabs(u - pathAt(layer.depth))) * 0.5F;
        const float ragged =
            1.6F / layer.depth - (v - m_horizon) + 0.12F / layer.depth * m_noise.at(u * size * 3, seedOffset);
        const float wanted =
            std::max(high, low * smoothStep(0.06F / layer.depth, 0.22F / layer.depth, ragged));
        if (wanted < 0.02F) return 0;
        const float mass = m_noise.fractal(u * size + seedOffset, v * size, 2);
        if (mass + wanted < 0.10F) return 0;
        const float leaf = m_noise.fractal(u * size * 9 + seedOffset, v * size * 9, 4);
        return smoothStep(0.42F, 0.52F, wanted + mass * 0.9F + leaf * 0.75F);
    }

    [[nodiscard]] Colour leafAt(float u, float v, const Layer& layer) const {
        const float size = layer.depth * 6;
        const float tone = m_noise.fractal(u * size + 70, v * size, 3);
        const float lit = std::exp(-(squared(u - m_sunX) * 2.2F + squared(v + 0.25F) * 2));
        return mix(m_season.leaf, m_season.lit, clamp01(0.14F + tone * 0.9F + lit * 0.45F));
    }

    [[nodiscard]] Colour barkAt(float u, float v, float across, const Layer& layer,
                                const Trunk& trunk) const {
        const float scale = layer.depth * 7;
        const float furrows =
            m_noise.fractal(u * scale * 3 + static_cast<float>(trunk.seed & 255), v * scale * 0.45F, 4);
        const float moss = smoothStep(0.0F, 0.5F, m_noise.at(u * 9, v * 5 + trunk.x * 50) + (v - m_horizon));
        Colour bark = mix(Colour{0.050F, 0.040F, 0.032F}, Colour{0.055F, 0.070F, 0.020F}, moss * 0.7F);
        bark = bark * (0.75F + 1.1F * (furrows + 0.35F));
        // The sun is behind: only the edge towards it is lit.
        const float side = trunk.x < m_sunX ? across : -across;
        const float rim = smoothStep(0.45F, 0.98F, side);
        return bark * (0.55F + 0.35F * std::sqrt(1 - across * across)) +
               m_season.mist * (rim * 0.16F * (0.7F + furrows));
    }

    [[nodiscard]] Colour groundAt(float u, float depth) const {
        const float x = (u - pathAt(depth)) * depth;
        const float wander = 0.25F * m_noise.fractal(depth * 0.6F, 7, 3);
        const float onPath = smoothStep(1.15F, 0.75F, std::fabs(x) + wander);
        const float litter = m_noise.fractal(u * depth * 9, depth * 8, 6);
        const float pebbles = m_noise.fractal(u * depth * 30, depth * 24, 3);
        const Colour soil = mix(m_season.floor * (1 + 1.5F * litter),
                                m_season.path * (1 + 0.5F * litter + 0.5F * pebbles), onPath);
        const float dapple =
            smoothStep(0.02F, 0.24F, m_noise.fractal(u * depth * 0.9F + 90, depth * 0.45F, 3));
        const Colour light = soil * (0.42F + 1.9F * dapple);
        const float fog = 1 - std::exp(-depth * 0.028F);
        return mix(light, mistAt(u, m_horizon), fog);
    }

    Season m_season;
    float m_horizon;
    float m_sunX;
    float m_bend;
    Noise m_noise;
    std::vector<Layer> m_layers;
};

} // namespace

Picture paintForest(int width, int height, std::uint32_t seed) {
    Random random{seed * std::uint64_t{3} + 2100};
    Forest forest{random};
    FilmOptions options;
    options.seed = seed;
    options.contrast = 0.45F;
    options.exposure = 1.25F;
    options.saturation = 1.08F;
    return exposeRows(
        Film{width, height, options}, [&](float v) { forest.beginRow(v); },
        [&](float u, float v) { return forest.at(u, v); });
}

} // namespace kelvara::samplecard
