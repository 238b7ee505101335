#pragma once

#include "imaging/Bitmap.h"
#include "presets/PresetLook.h"

#include <cstddef>

namespace kelvara {

/// Grey noise around zero. It depends on a pixel's place alone, so that a photo in one size looks the same
/// each time.
class Grain {
public:
    /// The most pixels that `add` takes at once.
    static constexpr std::size_t mostPixels = 256;

    Grain(const PresetLook::Grain& grain, PixelSize size);

    /// Adds it to `summands`, of the pixels of row `y` from `x` on. Writes up to 16 more.
    void add(int y, int x, std::size_t count, float* summands) const;

private:
    double m_size;  ///< Pixels from one random number to the next, at least one; interpolated between.
    float m_amount; ///< The random numbers lie from minus to plus this.
};

} // namespace kelvara
