#pragma once

#include "samplecard/Colour.h"
#include "samplecard/Noise.h"

namespace kelvara::samplecard {

/// A direction or point; x to the right, y up, z away from the camera.
struct Vector {
    float x = 0;
    float y = 0;
    float z = 0;

    friend Vector operator+(Vector a, Vector b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
    friend Vector operator-(Vector a, Vector b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
    friend Vector operator*(Vector a, float k) { return {a.x * k, a.y * k, a.z * k}; }
};
inline float dot(Vector a, Vector b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vector normalised(Vector v) { return v * (1 / std::sqrt(dot(v, v))); }

/// The light of a sky with one layer of clouds.
class Sky {
public:
    struct Look {
        Vector sun{0.4F, 0.35F, 0.85F}; ///< towards it; normalised by the constructor
        Colour zenith{0.10F, 0.22F, 0.52F};
        Colour horizon{0.55F, 0.68F, 0.85F};
        Colour glow{0.9F, 0.6F, 0.3F}; ///< around the sun, with its strength
        float glowWidth = 0.25F;       ///< 0 to 1
        Colour sunlight{1.9F, 1.75F, 1.5F};
        bool showsSun = false;
        float cover = 0.4F;  ///< share of the sky under clouds, 0 to 1
        float cloudSize = 1; ///< larger is larger
        float streaks = 1;   ///< above 1 draws clouds out sideways
        Colour cloudShade{0.34F, 0.37F, 0.44F};
    };

    Sky(const Look& look, std::uint32_t seed);

    [[nodiscard]] const Look& look() const { return m_look; }
    /// Without the clouds; `direction` is normalised.
    [[nodiscard]] Colour clear(Vector direction) const;
    [[nodiscard]] Colour at(Vector direction) const;
    /// What far things fade into in that direction.
    [[nodiscard]] Colour haze(Vector direction) const;

private:
    Look m_look;
    Noise m_shape;
    Noise m_warp;
};

} // namespace kelvara::samplecard
