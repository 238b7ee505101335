#include "presets/LuaTableParser.h"

#include "presets/NumberText.h"
#include "text/Localized.h"
#include "text/UTF8.h"

#include <algorithm>
#include <fmt/format.h>
#include <optional>
#include <utility>

namespace kelvara {

namespace {

/// Presets are some five levels deep; each takes room on the stack.
constexpr int maximumDepth = 256;

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

/// One pass over a text. What can fail gives nothing then, and has noted where.
class Reader {
public:
    explicit Reader(std::string_view text) : m_text{text} {}

    std::optional<LuaValue> document() {
        skipSpace();
        const auto start = m_at;
        if (!identifier().empty()) {
            skipSpace();
            if (!take('=')) m_at = start;
        }
        return value();
    }

    [[nodiscard]] std::int64_t failure() const { return static_cast<std::int64_t>(m_failure); }

private:
    [[nodiscard]] bool isAtEnd() const { return m_at >= m_text.size(); }
    [[nodiscard]] bool isNext(char c, std::size_t ahead = 0) const {
        return m_at + ahead < m_text.size() && m_text[m_at + ahead] == c;
    }
    bool take(char c) {
        if (!isNext(c)) return false;
        ++m_at;
        return true;
    }
    std::nullopt_t fail(std::size_t offset) {
        m_failure = offset;
        return std::nullopt;
    }

    void skipSpace() {
        while (!isAtEnd()) {
            const char c = m_text[m_at];
            if (c == '\t' || c == '\n' || c == '\r' || c == ' ') {
                ++m_at;
            } else if (c == '-' && isNext('-', 1)) {
                m_at = std::min(m_text.find('\n', m_at), m_text.size());
            } else {
                return;
            }
        }
    }

    std::string_view identifier() {
        const auto start = m_at;
        while (!isAtEnd()) {
            const char c = m_text[m_at];
            if (!isLetter(c) && c != '_' && (!isDigit(c) || m_at == start)) break;
            ++m_at;
        }
        return m_text.substr(start, m_at - start);
    }

    bool expect(char c) {
        skipSpace();
        if (take(c)) return true;
        fail(m_at);
        return false;
    }

    std::optional<LuaValue> value() {
        skipSpace();
        if (isAtEnd()) return fail(m_at);
        const char c = m_text[m_at];
        if (c == '"' || c == '\'') return quotedString();
        if (c == '[') return longString();
        if (c == '{') return table();
        if (isDigit(c) || c == '+' || c == '-' || c == '.') return number();
        const auto word = identifier();
        if (word == "true") return LuaValue{true};
        if (word == "false") return LuaValue{false};
        if (word == "nil") return LuaValue{};
        return fail(m_at);
    }

    std::optional<LuaValue> table() {
        if (m_depth == maximumDepth) return fail(m_at);
        ++m_depth;
        auto table = std::make_unique<LuaTable>();
        ++m_at;
        while (true) {
            skipSpace();
            if (take('}')) break;
            if (!entry(*table)) return std::nullopt;
            skipSpace();
            if (!take(',') && !take(';') && !isNext('}')) return fail(m_at);
        }
        --m_depth;
        return LuaValue{std::move(table)};
    }

    bool entry(LuaTable& table) {
        if (isNext('[') && !isNext('=', 1) && !isNext('[', 1)) return bracketedEntry(table);
        const auto name = lookaheadAssignment();
        auto content = value();
        if (!content) return false;
        if (name) {
            table.fields.insert_or_assign(std::string{*name}, std::move(*content));
        } else {
            table.array.push_back(std::move(*content));
        }
        return true;
    }

    bool bracketedEntry(LuaTable& table) {
        ++m_at;
        const auto key = value();
        if (!key || !expect(']') || !expect('=')) return false;
        auto content = value();
        if (!content) return false;
        if (key->string() == nullptr && key->number() == nullptr) {
            fail(m_at);
            return false;
        }
        table.fields.insert_or_assign(key->string() != nullptr ? *key->string() : numberText(*key->number()),
                                      std::move(*content));
        return true;
    }

    /// The name of a named entry, up to and with its "="; nothing is taken where there is none.
    std::optional<std::string_view> lookaheadAssignment() {
        const auto start = m_at;
        const auto name = identifier();
        skipSpace();
        if (!name.empty() && isNext('=') && !isNext('=', 1)) {
            ++m_at;
            return name;
        }
        m_at = start;
        return std::nullopt;
    }

    std::optional<LuaValue> quotedString() {
        const char quote = m_text[m_at++];
        std::string bytes;
        while (!isAtEnd()) {
            const char c = m_text[m_at++];
            if (c == quote) {
                LuaValue value; // named, because g++ 12 warns wrongly of a temporary one
                value.value = repairedUTF8(bytes);
                return value;
            }
            bytes += c == '\\' && !isAtEnd() ? escape() : c;
        }
        return fail(m_at);
    }

    /// What follows a backslash.
    char escape() {
        if (isDigit(m_text[m_at])) {
            unsigned byte = 0;
            for (int i = 0; i < 3 && !isAtEnd() && isDigit(m_text[m_at]); ++i) {
                byte = byte * 10 + static_cast<unsigned>(m_text[m_at++] - '0');
            }
            return static_cast<char>(byte % 256);
        }
        switch (const char c = m_text[m_at++]) {
        case 'n':
            return '\n';
        case 't':
            return '\t';
        case 'r':
            return '\r';
        default:
            return c;
        }
    }

    std::optional<LuaValue> longString() {
        const auto start = m_at++;
        const auto level = std::min(m_text.find_first_not_of('=', m_at), m_text.size()) - m_at;
        m_at += level;
        if (!take('[')) return fail(start);
        const auto closing = ']' + std::string(level, '=') + ']';
        const auto end = m_text.find(closing, m_at);
        if (end == std::string_view::npos) return fail(start);
        const auto body = m_text.substr(m_at, end - m_at);
        m_at = end + closing.size();
        return LuaValue{repairedUTF8(body)};
    }

    std::optional<LuaValue> number() {
        const auto start = m_at;
        while (!isAtEnd()) {
            const char c = m_text[m_at];
            if (!isDigit(c) && !isLetter(c) && c != '+' && c != '-' && c != '.') break;
            ++m_at;
        }
        const auto number = parsedNumber(m_text.substr(start, m_at - start));
        if (!number) return fail(start);
        return LuaValue{*number};
    }

    std::string_view m_text;
    std::size_t m_at = 0;
    std::size_t m_failure = 0;
    int m_depth = 0;
};

} // namespace

Result<LuaValue, LuaTableParser::ParseError> LuaTableParser::parse(std::string_view text) {
    Reader reader{text};
    auto value = reader.document();
    if (!value) return Failure{ParseError{reader.failure()}};
    return std::move(*value);
}

std::string message(const LuaTableParser::ParseError& error) {
    return fmt::format(fmt::runtime(localized("Unexpected character at offset {}.")), error.offset);
}

} // namespace kelvara
