#pragma once

#include "presets/ColorCube.h"

#include <cstddef>

namespace kelvara {

/// Takes pixels of four floats (blue, green, red, any) through the cube, in place: between its eight nearest
/// entries every colour is interpolated linearly. Numbers outside
/// 0 to 1 count as the nearest within. The same to the last bit on every processor.
///
/// Reads, but doesn't change, up to 16 pixels more, which have to be finite numbers.
void sampleCube(const ColorCube& cube, float* pixels, std::size_t count);

} // namespace kelvara
