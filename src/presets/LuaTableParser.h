#pragma once

#include "model/Result.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

namespace kelvara {

struct LuaTable;
struct LuaNil {};

/// A literal of the Lua language.
struct LuaValue {
    std::variant<std::string, double, bool, std::unique_ptr<LuaTable>, LuaNil> value = LuaNil{};

    /// These are null where the value is of another type.
    [[nodiscard]] const std::string* string() const { return std::get_if<std::string>(&value); }
    [[nodiscard]] const double* number() const { return std::get_if<double>(&value); }
    [[nodiscard]] const bool* boolean() const { return std::get_if<bool>(&value); }
    [[nodiscard]] const LuaTable* table() const;
    [[nodiscard]] bool isNil() const { return std::holds_alternative<LuaNil>(value); }
};

struct LuaTable {
    std::vector<LuaValue> array; ///< Entries without a key, in their order.
    /// Entries with one; a number is a key by its text: "1.0", "2.5".
    std::unordered_map<std::string, LuaValue> fields;

    /// Null where there is no such key.
    [[nodiscard]] const LuaValue* field(const std::string& key) const;
};

inline const LuaTable* LuaValue::table() const {
    const auto* owner = std::get_if<std::unique_ptr<LuaTable>>(&value);
    return owner != nullptr ? owner->get() : nullptr;
}

inline const LuaValue* LuaTable::field(const std::string& key) const {
    const auto found = fields.find(key);
    return found != fields.end() ? &found->second : nullptr;
}

/// Reads the one literal that old develop presets are made of. Runs nothing: whatever is no literal is an
/// error, and so are tables nested absurdly deep. What follows the literal is ignored.
class LuaTableParser {
public:
    /// Where parsing stopped, in bytes.
    struct ParseError {
        std::int64_t offset = 0;
        friend bool operator==(const ParseError&, const ParseError&) = default;
    };

    /// `text` is UTF-8; a name and "=" may stand before the literal.
    [[nodiscard]] static Result<LuaValue, ParseError> parse(std::string_view text);
};

/// One sentence for people.
[[nodiscard]] std::string message(const LuaTableParser::ParseError& error);

} // namespace kelvara
