#pragma once

#include "services/xmp/EncodedText.h"
#include "services/xmp/StartTag.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

struct XML_ParserStruct;

namespace kelvara::xmp {

/// The most bytes that a sidecar may have: many times what develop settings with masks take, few enough that
/// the worst a hostile file can do, names that are all different, costs about a second.
inline constexpr std::size_t maximumSidecarSize = 8 * 1024 * 1024;

/// What one pass over a sidecar tells about one property of the XMP basic namespace. Refers to places, not to
/// the bytes themselves. Texts are UTF-8, whatever the document's encoding.
struct SidecarScan {
    /// An attribute of an rdf:Description.
    struct Attribute {
        Range tag;                 ///< The start tag of its description.
        std::string qualifiedName; ///< Prefix and name, as the document spells them.
    };
    /// A child element of an rdf:Description.
    struct Element {
        Range tag;
        Range content;             ///< Between the tags; nothing for an empty-element tag.
        bool isStructured = false; ///< RDF attributes say that its content is something else than a text.
    };
    struct Description {
        Range tag;                     ///< Its start tag.
        std::string prefix;            ///< To be used here for the XMP basic namespace.
        bool isPrefixDeclared = false; ///< Whether `prefix` is bound here already.
    };

    Encoding encoding = Encoding::utf8;
    Description firstDescription;
    std::variant<std::monostate, Attribute, Element>
        place;         ///< Where the property stands; nowhere, if absent.
    std::string value; ///< The property's text, character references resolved.

    [[nodiscard]] bool hasProperty() const { return place.index() != 0; }
};

/// Looks through sidecars, one after the other, with one parser, which is costly to make. One thread at a
/// time.
class SidecarScanner {
public:
    SidecarScanner();
    ~SidecarScanner();
    SidecarScanner(const SidecarScanner&) = delete;
    SidecarScanner& operator=(const SidecarScanner&) = delete;

    /// Looks for the property `name`. Every rdf:Description counts, in document order, at any depth; in each,
    /// an attribute comes before the first child element.
    ///
    /// Empty where the bytes are not well-formed XML with namespaces, hold no rdf:Description, or are what no
    /// sidecar is: larger than `maximumSidecarSize`, nested absurdly deep, in another encoding than those of
    /// `Encoding`, or with a document type that declares entities or attributes. Fetches and expands nothing.
    [[nodiscard]] std::optional<SidecarScan> scan(std::string_view bytes, std::string_view name);

private:
    std::unique_ptr<XML_ParserStruct, void (*)(XML_ParserStruct*)> m_parser;
};

} // namespace kelvara::xmp
