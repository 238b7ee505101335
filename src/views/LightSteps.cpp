#include "views/LightSteps.h"

#include <cmath>

namespace kelvara::LightSteps {

namespace {
double large(Slider slider) { return slider == Slider::exposure ? 0.25 : 10; }
} // namespace

double fine(Slider slider) { return slider == Slider::exposure ? 0.01 : 1; }

double plain(Slider slider) { return slider == Slider::exposure ? 0.05 : 1; }

double rounded(double amount, double step) { return std::round(amount / step) / std::round(1 / step); }

bool isFine(Qt::KeyboardModifiers modifiers) { return modifiers & (Qt::AltModifier | Qt::ControlModifier); }

double moved(Slider slider, double amount, double steps, Qt::KeyboardModifiers modifiers) {
    const auto isLarge = modifiers.testFlag(Qt::ShiftModifier);
    const auto step = isFine(modifiers) ? fine(slider) : isLarge ? large(slider) : plain(slider);
    // Rounded to the finest step, so that many steps don't add up to less than they are.
    return rounded(amount + steps * step, fine(slider));
}

} // namespace kelvara::LightSteps
