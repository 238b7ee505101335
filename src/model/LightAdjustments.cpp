#include "model/LightAdjustments.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace kelvara {

namespace {
constexpr std::array<std::string_view, LightAdjustments::sliders.size()> rawValues{
    "exposure", "contrast", "highlights", "shadows", "whites", "blacks"};
} // namespace

std::string_view LightAdjustments::rawValue(Slider slider) { return rawValues[index(slider)]; }

std::optional<LightAdjustments::Slider> LightAdjustments::fromRawValue(std::string_view text) {
    const auto* found = std::find(rawValues.begin(), rawValues.end(), text);
    if (found == rawValues.end()) return std::nullopt;
    return sliders[static_cast<std::size_t>(found - rawValues.begin())];
}

std::string LightAdjustments::text(Slider slider, double value) {
    const bool isExposure = slider == Slider::exposure;
    if (!(std::abs(value) >= threshold(slider))) return isExposure ? "0.00" : "0";
    return isExposure ? fmt::format("{:+.2f}", value) : fmt::format("{:+.0f}", value);
}

void LightAdjustments::set(Slider slider, double value) {
    const double nearest = std::clamp(value, -limit(slider), limit(slider));
    m_values[index(slider)] = std::abs(nearest) >= threshold(slider) ? nearest : 0;
}

std::size_t LightAdjustments::hash() const {
    std::size_t hash = 0;
    for (const double value : m_values) hash = hash * 31 + std::hash<double>{}(value);
    return hash;
}

} // namespace kelvara
