#pragma once

#include "services/xmp/EncodedText.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace kelvara::xmp {

/// A stretch of a document: a byte offset and a number of bytes.
struct Range {
    std::size_t offset = 0;
    std::size_t length = 0;

    [[nodiscard]] std::size_t end() const { return offset + length; }
    [[nodiscard]] std::string_view of(std::string_view bytes) const { return bytes.substr(offset, length); }
    friend bool operator==(const Range&, const Range&) = default;
};

/// Where the pieces of a start tag or empty-element tag stand in its document's bytes.
struct StartTag {
    struct Attribute {
        Range space; ///< The white space before the name.
        Range name;
        Range value; ///< Between the quotes.
    };

    Range name;
    std::vector<Attribute> attributes; ///< In their order, namespace declarations included.
    std::size_t attributesEnd = 0;     ///< After the last attribute, or after the name where there is none.
    std::size_t close = 0;             ///< Where its ">" or "/>" stands.
    bool isEmptyElement = false;

    /// Takes apart the tag at `range`, from "<" to ">"; empty where the bytes are no such tag.
    [[nodiscard]] static std::optional<StartTag> parse(const EncodedText& text, Range range);
};

} // namespace kelvara::xmp
