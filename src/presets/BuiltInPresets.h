#pragma once

#include "presets/DevelopPreset.h"

#include <string>
#include <vector>

namespace kelvara {

/// Presets that come with the application, under one heading.
struct BuiltInCategory {
    std::string name;  ///< The same in every language.
    std::string title; ///< In the user's words.
    std::vector<DevelopPreset> presets;
};

/// The presets of builtin.json in its order, with ids "builtin/" and a name.
[[nodiscard]] std::vector<BuiltInCategory> builtInPresets();

} // namespace kelvara
