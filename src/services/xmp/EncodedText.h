#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kelvara::xmp {

/// The encodings that a sidecar may have. ASCII counts as UTF-8.
enum class Encoding { utf8, latin1, utf16LittleEndian, utf16BigEndian };

/// Bytes of one code unit.
[[nodiscard]] constexpr std::size_t unitSize(Encoding encoding) {
    return encoding == Encoding::utf8 || encoding == Encoding::latin1 ? 1 : 2;
}

/// The bytes that `text` (UTF-8) has in `encoding`; empty where it can't be written so.
[[nodiscard]] std::optional<std::string> encoded(std::string_view text, Encoding encoding);

/// A document's bytes, seen as the markup in them: all of it is ASCII in every encoding above, so an edit
/// needs to know no other character. Refers to bytes that must outlive it; offsets and sizes are in bytes.
class EncodedText {
public:
    EncodedText(std::string_view bytes, Encoding encoding) : m_bytes{bytes}, m_encoding{encoding} {}

    [[nodiscard]] std::string_view bytes() const { return m_bytes; }
    [[nodiscard]] Encoding encoding() const { return m_encoding; }
    [[nodiscard]] std::size_t unit() const { return unitSize(m_encoding); }

    /// The ASCII character at a byte offset; NUL, which no document holds, for any other and past the end.
    [[nodiscard]] char at(std::size_t offset) const;
    [[nodiscard]] bool isSpace(std::size_t offset) const;

private:
    std::string_view m_bytes;
    Encoding m_encoding;
};

} // namespace kelvara::xmp
