#pragma once

#include "samplecard/Colour.h"
#include "samplecard/Picture.h"

#include <cstdint>
#include <vector>

namespace kelvara::samplecard {

/// How the camera turns light into a picture.
struct FilmOptions {
    float exposure = 1;
    float contrast = 0.35F;   ///< strength of the S curve, 0 to 1
    float saturation = 1.05F; ///< 1 leaves colours alone
    float vignette = 0.22F;   ///< light lost in the corners, 0 to 1
    float grain = 0.011F;     ///< noise of a mid grey in encoded units
    std::uint32_t seed = 1;
};

/// A picture under exposure: painters give the light of each pixel once, in any order and from several
/// threads as long as no pixel is given twice.
class Film {
public:
    Film(int width, int height, const FilmOptions& options);

    [[nodiscard]] int width() const { return m_picture.width; }
    [[nodiscard]] int height() const { return m_picture.height; }
    void expose(int x, int y, Colour light);
    [[nodiscard]] Picture developed() && { return std::move(m_picture); }

private:
    static constexpr int curveSteps = 4096;
    static constexpr float curveTop = 8; // light beyond it is white
    static constexpr std::uint32_t grainSide = 512;
    static const std::vector<float>& grainTile();
    static std::vector<float> toneCurve(const FilmOptions& options);

    Picture m_picture;
    FilmOptions m_options;
    float m_perDiagonal; // 1 / the square of half the diagonal
    std::vector<float> m_curve;
    const float* m_grain; // shared by all
};

inline void Film::expose(int x, int y, Colour light) {
    const auto halfWidth = static_cast<float>(m_picture.width) / 2;
    const auto halfHeight = static_cast<float>(m_picture.height) / 2;
    const float fromCentre =
        (squared(static_cast<float>(x) - halfWidth) + squared(static_cast<float>(y) - halfHeight)) *
        m_perDiagonal;
    const float kept = (1 - m_options.vignette * fromCentre) / curveTop;
    const float luminance = 0.2126F * light.r + 0.7152F * light.g + 0.0722F * light.b;
    const auto tone = [&](float channel) {
        const float saturated = std::max(0.0F, luminance + (channel - luminance) * m_options.saturation);
        const float position = std::sqrt(std::min(1.0F, saturated * kept)) * (curveSteps - 0.01F);
        const int step = static_cast<int>(position);
        const float* value = &m_curve[static_cast<std::size_t>(step)];
        return mix(value[0], value[1], position - static_cast<float>(step));
    };
    const float red = tone(light.r);
    const float green = tone(light.g);
    const float blue = tone(light.b);
    const std::uint32_t row = (static_cast<std::uint32_t>(y) + m_options.seed * 131U) % grainSide;
    const std::uint32_t column = static_cast<std::uint32_t>(x) + m_options.seed * 57U;
    const float strength = m_options.grain * (0.35F + 1.6F * green * (1.15F - green));
    const float shared = m_grain[row * grainSide + column % grainSide] * strength;
    const float coloured = m_grain[row * grainSide + (column * 5 + 101) % grainSide] * strength * 0.5F;
    std::uint16_t* pixel = m_picture.at(x, y);
    pixel[0] = static_cast<std::uint16_t>(clamp01(red + shared + coloured) * 65535.0F + 0.5F);
    pixel[1] = static_cast<std::uint16_t>(clamp01(green + shared) * 65535.0F + 0.5F);
    pixel[2] = static_cast<std::uint16_t>(clamp01(blue + shared - coloured) * 65535.0F + 0.5F);
}

} // namespace kelvara::samplecard
