#include "presets/BuiltInPresets.h"

#include "presets/BuiltInPresetsText.h"
#include "text/Localized.h"

#include <nlohmann/json.hpp>
#include <optional>

namespace kelvara {

namespace {

using Json = nlohmann::json;

/// A string, a number, true or false, or an array of numbers.
std::optional<PresetValue> presetValue(const Json& json) {
    if (json.is_string()) return json.get<std::string>();
    if (json.is_number()) return json.get<double>();
    if (json.is_boolean()) return json.get<bool>();
    if (!json.is_array()) return std::nullopt;
    std::vector<double> numbers;
    for (const auto& element : json) {
        if (!element.is_number()) return std::nullopt;
        numbers.push_back(element.get<double>());
    }
    return numbers;
}

DevelopPreset preset(const Json& json) {
    const auto values = json.value("settings", Json::object());
    PresetSettings settings;
    for (const auto& [key, value] : values.items()) {
        if (auto setting = presetValue(value)) settings.emplace(key, std::move(*setting));
    }
    auto preset = DevelopPreset::of("builtin/" + json.value("name", std::string{}),
                                    localized(json.value("title", std::string{})), std::move(settings));
    preset.summary = localized(json.value("summary", std::string{}));
    return preset;
}

} // namespace

std::vector<BuiltInCategory> builtInPresets() {
    std::vector<BuiltInCategory> categories;
    const auto json = Json::parse(builtInPresetsText, nullptr, false);
    if (!json.is_array()) return categories;
    for (const auto& category : json) {
        const auto name = category.value("category", std::string{});
        auto& added = categories.emplace_back(BuiltInCategory{name, localized(name), {}});
        for (const auto& entry : category.value("presets", Json::array()))
            added.presets.push_back(preset(entry));
    }
    return categories;
}

} // namespace kelvara
