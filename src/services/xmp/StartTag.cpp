#include "services/xmp/StartTag.h"

namespace kelvara::xmp {

namespace {

/// Walks over a tag's bytes, unit by unit.
class TagCursor {
public:
    TagCursor(const EncodedText& text, Range range)
        : m_text{text}, m_offset{range.offset}, m_end{range.end()} {}

    [[nodiscard]] std::size_t offset() const { return m_offset; }
    [[nodiscard]] bool isAtEnd() const { return m_offset >= m_end; }
    [[nodiscard]] char character() const { return isAtEnd() ? '\0' : m_text.at(m_offset); }

    bool take(char expected) {
        if (isAtEnd() || m_text.at(m_offset) != expected) return false;
        m_offset += m_text.unit();
        return true;
    }
    Range takeSpace() {
        return takeWhile([this] { return m_text.isSpace(m_offset); });
    }
    Range takeName() {
        return takeWhile([this] {
            const char next = m_text.at(m_offset);
            return !m_text.isSpace(m_offset) && next != '=' && next != '/' && next != '>';
        });
    }
    Range takeUntil(char stop) {
        return takeWhile([this, stop] { return m_text.at(m_offset) != stop; });
    }

private:
    template <typename Condition> Range takeWhile(Condition condition) {
        const auto start = m_offset;
        while (!isAtEnd() && condition()) m_offset += m_text.unit();
        return {start, m_offset - start};
    }

    const EncodedText& m_text;
    std::size_t m_offset;
    std::size_t m_end;
};

} // namespace

std::optional<StartTag> StartTag::parse(const EncodedText& text, Range range) {
    if (range.end() > text.bytes().size() || range.length % text.unit() != 0) return std::nullopt;
    TagCursor cursor{text, range};
    StartTag tag;
    if (!cursor.take('<')) return std::nullopt;
    tag.name = cursor.takeName();
    tag.attributesEnd = cursor.offset();
    for (;;) {
        const auto space = cursor.takeSpace();
        tag.close = cursor.offset();
        if (cursor.character() == '/' || cursor.character() == '>') break;
        Attribute attribute{.space = space, .name = cursor.takeName(), .value = {}};
        cursor.takeSpace();
        if (attribute.name.length == 0 || !cursor.take('=')) return std::nullopt;
        cursor.takeSpace();
        const char quote = cursor.character();
        if ((quote != '"' && quote != '\'') || !cursor.take(quote)) return std::nullopt;
        attribute.value = cursor.takeUntil(quote);
        if (!cursor.take(quote)) return std::nullopt;
        tag.attributes.push_back(attribute);
        tag.attributesEnd = cursor.offset();
    }
    tag.isEmptyElement = cursor.take('/');
    if (tag.name.length == 0 || !cursor.take('>') || !cursor.isAtEnd()) return std::nullopt;
    return tag;
}

} // namespace kelvara::xmp
