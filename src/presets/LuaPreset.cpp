#include "presets/LuaTableParser.h"
#include "presets/PresetFile.h"
#include "text/UTF8.h"

#include <cmath>

namespace kelvara {

namespace {

const LuaTable* tableIn(const LuaTable& table, const std::string& key) {
    const auto* value = table.field(key);
    return value != nullptr ? value->table() : nullptr;
}

std::vector<double> finiteNumbers(const LuaTable& table) {
    std::vector<double> numbers;
    for (const auto& value : table.array) {
        if (const auto* number = value.number(); number != nullptr && std::isfinite(*number)) {
            numbers.push_back(*number);
        }
    }
    return numbers;
}

std::optional<PresetValue> setting(const LuaValue& value) {
    if (const auto* text = value.string()) return *text;
    if (const auto* flag = value.boolean()) return *flag;
    if (const auto* table = value.table()) return finiteNumbers(*table);
    if (const auto* number = value.number(); number != nullptr && std::isfinite(*number)) return *number;
    return std::nullopt;
}

} // namespace

Result<PresetFile, PresetFile::Problem> PresetFile::readLua(std::string_view bytes) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (bytes.starts_with(byteOrderMark)) bytes.remove_prefix(byteOrderMark.size());
    if (repairedUTF8(bytes) != bytes) return Failure{Problem::unreadable};
    const auto parsed = LuaTableParser::parse(bytes);
    const auto* top = parsed ? parsed->table() : nullptr;
    if (top == nullptr) return Failure{Problem::unreadable};

    const auto* type = top->field("type");
    if (type != nullptr && type->string() != nullptr && *type->string() != "Develop") {
        return Failure{Problem::notADevelopPreset};
    }
    const auto* value = tableIn(*top, "value");
    const auto* settings = value != nullptr ? tableIn(*value, "settings") : nullptr;
    if (settings == nullptr) return Failure{Problem::notADevelopPreset};

    PresetFile file;
    for (const auto& [key, content] : settings->fields) {
        if (auto converted = setting(content)) file.settings.emplace(key, std::move(*converted));
    }
    const auto* title = top->field("title");
    if (title != nullptr && title->string() != nullptr) file.title = *title->string();
    return file;
}

} // namespace kelvara
