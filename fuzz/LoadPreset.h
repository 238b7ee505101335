#pragma once

#include "presets/DevelopPreset.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace kelvara::fuzz {

inline void require(bool condition) {
    if (!condition) std::abort();
}

inline bool isFinite(const PresetValue& value) {
    if (const auto* number = std::get_if<double>(&value)) return std::isfinite(*number);
    const auto* list = std::get_if<std::vector<double>>(&value);
    return list == nullptr ||
           std::all_of(list->begin(), list->end(), [](double number) { return std::isfinite(number); });
}

/// Any bytes as the preset in a file of this name: what loads can be shown and makes colours of colours.
inline void loadPreset(const char* path, const std::uint8_t* data, std::size_t size) {
    const std::string bytes{reinterpret_cast<const char*>(data), size};
    const auto preset = DevelopPreset::read(bytes, FileURL{path});
    if (!preset) return require(!message(preset.error()).empty());
    require(!preset->title.empty());
    require(std::is_sorted(preset->unsupportedSettings.begin(), preset->unsupportedSettings.end()));
    for (const auto& [key, value] : preset->settings) require(isFinite(value));
    LightAdjustments light;
    light.set(LightAdjustments::Slider::shadows, 30);
    const auto drawn = DevelopPreset::combining(preset->withAmount(0.5), light);
    for (const auto& color : {RGB{0, 0, 0}, RGB{1, 1, 1}, RGB{0.9, 0.1, 0.3}, RGB{0.2, 0.6, 0.5}}) {
        for (const double c : drawn->apply(color)) require(c >= 0 && c <= 1);
    }
}

} // namespace kelvara::fuzz
