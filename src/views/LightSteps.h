#pragma once

#include "model/LightAdjustments.h"

#include <Qt>

/// How far the keys, the wheel and the pointer move a light slider.
namespace kelvara::LightSteps {

using Slider = LightAdjustments::Slider;

[[nodiscard]] double fine(Slider slider);
[[nodiscard]] double plain(Slider slider);
/// The nearest multiple of a step, exactly as a person would type it: 2.3, not 2.3000000000000003.
[[nodiscard]] double rounded(double amount, double step);
/// Whether fine steps are asked for. Some window managers keep Alt and the mouse to themselves.
[[nodiscard]] bool isFine(Qt::KeyboardModifiers modifiers);
/// `amount` moved by so many steps, large ones with Shift; may lie beyond the slider's range.
[[nodiscard]] double moved(Slider slider, double amount, double steps, Qt::KeyboardModifiers modifiers);

} // namespace kelvara::LightSteps
