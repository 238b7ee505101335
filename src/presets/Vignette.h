#pragma once

#include "imaging/Bitmap.h"
#include "presets/PresetLook.h"

#include <cstddef>

namespace kelvara {

/// Darker or lighter corners: what a gradient around the middle multiplies onto a picture or screens over it,
/// both of which are a factor and a summand for each pixel.
class Vignette {
public:
    Vignette(const PresetLook::Vignette& vignette, PixelSize size);

    /// Of the pixels of row `y` from `x` on. Writes up to 16 more.
    void fill(int y, int x, std::size_t count, float* factors, float* summands) const;

private:
    float m_centreX, m_centreY;
    float m_horizontalScale; ///< The gradient is round in a square of the picture's height.
    float m_inner;           ///< Radius in pixels of that square.
    float m_perRadius;       ///< How much of the gradient a pixel of radius is.
    float m_strength;
    bool m_darkens;
};

} // namespace kelvara
