#pragma once

#include "model/LightAdjustments.h"
#include "presets/DevelopPreset.h"
#include "presets/Histogram.h"

#include <optional>

/// Sets the light of a photo for a balanced exposure. Any thread.
namespace kelvara::AutoTone {

/// Edits that bring a photo, seen through the preset, near a middle brightness and contrast, without
/// clipping more highlights than the preset does alone. Takes some milliseconds.
[[nodiscard]] LightAdjustments adjustments(const Histogram& histogram,
                                           const std::optional<DevelopPreset>& preset);

} // namespace kelvara::AutoTone
