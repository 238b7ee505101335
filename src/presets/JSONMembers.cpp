#include "presets/JSONMembers.h"

#include <algorithm>
#include <string>

namespace kelvara {

namespace {

class Scanner {
public:
    explicit Scanner(std::string_view text) : m_text{text} { skipSpace(); }

    [[nodiscard]] bool isAtEnd() const { return m_position == m_text.size(); }
    /// Passes `c` and the space after it.
    bool pass(char c) {
        if (isAtEnd() || m_text[m_position] != c) return false;
        ++m_position;
        skipSpace();
        return true;
    }
    /// A text in quotes; empty where there is none.
    std::string_view string() {
        const auto start = m_position;
        if (isAtEnd() || m_text[start] != '"' || !skipString()) return {};
        return taken(start);
    }
    /// What stands before the comma or bracket that ends a value; empty where brackets don't match.
    std::string_view value() {
        const auto start = m_position;
        std::string closing; // the brackets that are still open, innermost last
        while (!isAtEnd()) {
            const char c = m_text[m_position];
            if (closing.empty() && (c == ',' || c == '}')) return taken(start);
            if (c == '"') {
                if (!skipString()) break;
                continue;
            }
            if (c == '{' || c == '[') closing += c == '{' ? '}' : ']';
            if (c == '}' || c == ']') {
                if (!closing.ends_with(c)) break;
                closing.pop_back();
            }
            ++m_position;
        }
        return {};
    }

private:
    static constexpr std::string_view space = " \t\r\n";

    void skipSpace() { m_position = std::min(m_text.find_first_not_of(space, m_position), m_text.size()); }
    bool skipString() {
        ++m_position;
        for (;;) {
            m_position = m_text.find_first_of("\"\\", m_position);
            if (m_position >= m_text.size()) return m_position = m_text.size(), false;
            if (m_text[m_position] == '"') return ++m_position, true;
            m_position += 2;
        }
    }
    std::string_view taken(std::size_t start) {
        auto text = m_text.substr(start, m_position - start);
        text = text.substr(0, text.find_last_not_of(space) + 1);
        skipSpace();
        return text;
    }

    std::string_view m_text;
    std::size_t m_position = 0;
};

} // namespace

std::optional<std::vector<JSONMember>> jsonMembers(std::string_view text) {
    std::vector<JSONMember> members;
    Scanner scanner{text};
    if (!scanner.pass('{')) return std::nullopt;
    while (!scanner.pass('}')) {
        if (!members.empty() && !scanner.pass(',')) return std::nullopt;
        JSONMember member;
        member.key = scanner.string();
        if (member.key.empty() || !scanner.pass(':')) return std::nullopt;
        member.value = scanner.value();
        if (member.value.empty()) return std::nullopt;
        members.push_back(member);
    }
    if (!scanner.isAtEnd()) return std::nullopt;
    return members;
}

} // namespace kelvara
