#pragma once

#include "samplecard/Film.h"

namespace kelvara::samplecard {

/// Exposes every pixel, row by row, to what `beginRow(v)` and `light(u, v)` say. Both coordinates are 0 in
/// the middle, v grows downwards, and the unit is the side of a square as large as the picture, so that a
/// scene is as large in an upright picture as in one across.
template <typename BeginRow, typename Light> Picture exposeRows(Film&& film, BeginRow beginRow, Light light) {
    const auto width = static_cast<float>(film.width());
    const auto height = static_cast<float>(film.height());
    const float unit = 1 / std::sqrt(width * height);
    for (int y = 0; y < film.height(); ++y) {
        const float v = (static_cast<float>(y) + 0.5F - height / 2) * unit;
        beginRow(v);
        for (int x = 0; x < film.width(); ++x)
            film.expose(x, y, light((static_cast<float>(x) + 0.5F - width / 2) * unit, v));
    }
    return std::move(film).developed();
}

/// The size of a pixel in the units of `exposeRows`.
inline float pixelOf(int width, int height) {
    return 1 / std::sqrt(static_cast<float>(width) * static_cast<float>(height));
}

} // namespace kelvara::samplecard
