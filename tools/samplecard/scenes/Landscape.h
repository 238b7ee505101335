#pragma once

#include "samplecard/Film.h"
#include "samplecard/Sky.h"

#include <optional>

namespace kelvara::samplecard {

/// A height field to look over; lengths in kilometres.
class Land {
public:
    Land() = default;
    Land(const Land&) = delete;
    Land& operator=(const Land&) = delete;
    virtual ~Land() = default;

    /// `footprint` is the size of a pixel there: finer detail may be left out.
    [[nodiscard]] virtual float height(float x, float z, float footprint) const = 0;
    /// The colour of the ground without light on it.
    [[nodiscard]] virtual Colour ground(Vector point, Vector normal, float footprint) const = 0;
};

struct Viewpoint {
    float focal = 1;       ///< of the lens, in widths of the picture
    float horizon = 0.45F; ///< its height in the picture from the top, 0 to 1
    float eye = 0.3F;
    float nearest = 0.3F;
    float farthest = 45;
    float haze = 0.03F; ///< light lost per kilometre
    Colour sunlight{2.6F, 2.4F, 2.1F};
    Colour skylight{0.32F, 0.42F, 0.60F};
    std::optional<float> water; ///< height of a lake's surface
    float ripples = 0.5F;
    Colour depth{0.010F, 0.030F, 0.036F}; ///< of the water itself
};

void paintLandscape(Film& film, const Land& land, const Sky& sky, const Viewpoint& view, std::uint32_t seed);

} // namespace kelvara::samplecard
