#pragma once

#include "imaging/ColorProfile.h"

namespace kelvara::DisplayColorSpace {

/// The colour space of the screen that shows the main window, in which bitmaps are prepared; sRGB until a
/// screen has been seen. One for the process, thread-safe.
[[nodiscard]] ColorProfilePtr current();

/// Tells whether `profile` differs from the one before; bitmaps prepared until now are then of no use.
/// Profiles that are no RGB profile change nothing.
bool update(ColorProfilePtr profile);

} // namespace kelvara::DisplayColorSpace
