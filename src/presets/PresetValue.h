#pragma once

#include <functional>
#include <map>
#include <string>
#include <variant>
#include <vector>

namespace kelvara {

/// One setting of a develop preset.
using PresetValue = std::variant<std::string, double, bool, std::vector<double>>;

/// Settings by their keys, such as "Exposure2012".
using PresetSettings = std::map<std::string, PresetValue, std::less<>>;

} // namespace kelvara
