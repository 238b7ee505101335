// Any bytes as a Lua literal: parsing it stops within the text, and what it gives survives being written out
// and parsed again.

#include "presets/LuaTableParser.h"
#include "presets/NumberText.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>

namespace {

using namespace kelvara;

void require(bool condition) {
    if (!condition) std::abort();
}

std::string written(const std::string& text) {
    std::string literal = "'";
    for (const char c : text) {
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\%03u", static_cast<unsigned>(static_cast<unsigned char>(c)));
        literal += escape;
    }
    return literal + '\'';
}

std::string written(const LuaValue& value) {
    if (const auto* text = value.string()) return written(*text);
    if (const auto* flag = value.boolean()) return *flag ? "true" : "false";
    if (const auto* number = value.number()) return (std::signbit(*number) ? "" : "+") + numberText(*number);
    const auto* table = value.table();
    if (table == nullptr) return "nil";
    std::string literal = "{";
    for (const auto& entry : table->array) literal += written(entry) + ',';
    std::map<std::string, std::string> fields;
    for (const auto& [key, entry] : table->fields) fields.emplace(key, written(entry));
    for (const auto& [key, entry] : fields) literal += '[' + written(key) + "]=" + entry + ',';
    return literal + '}';
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text{reinterpret_cast<const char*>(data), size};
    const auto value = LuaTableParser::parse(text);
    if (!value) {
        require(value.error().offset >= 0 && value.error().offset <= static_cast<std::int64_t>(size));
        return 0;
    }
    const auto literal = written(*value);
    const auto again = LuaTableParser::parse(literal);
    require(again.hasValue() && written(*again) == literal);
    return 0;
}
