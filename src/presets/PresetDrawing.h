#pragma once

#include "imaging/Bitmap.h"
#include "presets/ColorCube.h"
#include "presets/DevelopPreset.h"

#include <stop_token>

namespace kelvara {

/// Rows are drawn in bands of at most this many pixels, or of one row. Between them drawing can be stopped.
constexpr std::int64_t mostBandPixels = 4'000'000;
[[nodiscard]] int rowsOfBand(PixelSize size);

/// Whether the preset draws every picture as it is.
[[nodiscard]] bool changesNothing(const DevelopPreset& preset);

/// The picture through a preset whose cube is `cube`, with 8 or 16 bits a channel. Null when memory is short
/// or `stop` was requested. Works on all cores, and blocks; any thread.
[[nodiscard]] BitmapPtr drawn(const DevelopPreset& preset, const ColorCube& cube, const Bitmap& source,
                              Depth depth, const std::stop_token& stop);
/// The same, in the picture's own memory where that fits and nobody else holds it. `source` was never held by
/// another thread.
[[nodiscard]] BitmapPtr redrawn(const DevelopPreset& preset, const ColorCube& cube, BitmapPtr source,
                                Depth depth, const std::stop_token& stop);

} // namespace kelvara
