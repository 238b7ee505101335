#pragma once

#include "samplecard/Noise.h"
#include "samplecard/Sky.h"

namespace kelvara::samplecard {

/// The light of an hour of the day.
struct Hour {
    Sky::Look sky;
    Colour sunlight;
    Colour skylight;
    float haze;
};

/// A low sun from the side, a misty backlight, pink dusk or a clear day.
Hour hourOf(Random& random);

} // namespace kelvara::samplecard
