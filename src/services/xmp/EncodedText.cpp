#include "services/xmp/EncodedText.h"

#include <array>

namespace kelvara::xmp {

namespace {

/// Takes the first character off `text`, which is UTF-8 that a parser has checked; empty where it is not.
std::optional<char32_t> takeCharacter(std::string_view& text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if ((lead >= 0x80 && lead < 0xC2) || lead > 0xF4 || text.size() < length) return std::nullopt;
    constexpr std::array<unsigned, 5> leadMask{0, 0x7F, 0x1F, 0x0F, 0x07};
    char32_t character = lead & leadMask[length];
    for (std::size_t i = 1; i < length; ++i) {
        character = character << 6 | (static_cast<unsigned char>(text[i]) & 0x3Fu);
    }
    text.remove_prefix(length);
    return character;
}

void appendUnit(std::string& bytes, char32_t unit, Encoding encoding) {
    const char high = static_cast<char>(unit >> 8 & 0xFF);
    const char low = static_cast<char>(unit & 0xFF);
    bytes += encoding == Encoding::utf16BigEndian ? high : low;
    bytes += encoding == Encoding::utf16BigEndian ? low : high;
}

} // namespace

std::optional<std::string> encoded(std::string_view text, Encoding encoding) {
    if (encoding == Encoding::utf8) return std::string{text};
    std::string bytes;
    bytes.reserve(text.size() * unitSize(encoding));
    while (!text.empty()) {
        const auto character = takeCharacter(text);
        if (!character) return std::nullopt;
        if (encoding == Encoding::latin1) {
            if (*character > 0xFF) return std::nullopt;
            bytes += static_cast<char>(*character);
        } else if (*character < 0x10000) {
            appendUnit(bytes, *character, encoding);
        } else {
            const char32_t offset = *character - 0x10000;
            appendUnit(bytes, 0xD800 + (offset >> 10), encoding);
            appendUnit(bytes, 0xDC00 + (offset & 0x3FF), encoding);
        }
    }
    return bytes;
}

char EncodedText::at(std::size_t offset) const {
    if (offset + unit() > m_bytes.size()) return '\0';
    char low = m_bytes[offset];
    char high = '\0';
    if (m_encoding == Encoding::utf16LittleEndian) high = m_bytes[offset + 1];
    if (m_encoding == Encoding::utf16BigEndian) {
        high = low;
        low = m_bytes[offset + 1];
    }
    return high == '\0' && static_cast<unsigned char>(low) < 0x80 ? low : '\0';
}

bool EncodedText::isSpace(std::size_t offset) const {
    const char character = at(offset);
    return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

} // namespace kelvara::xmp
