#include "services/xmp/SidecarScan.h"

#include "services/xmp/NamespaceScope.h"

#include <algorithm>
#include <expat.h>
#include <limits>
#include <vector>

namespace kelvara::xmp {

namespace {

/// Sidecars of real programs are some ten levels deep; the parser's memory grows with every level.
constexpr std::size_t maximumDepth = 512;

Encoding encodingWithoutDeclaration(std::string_view bytes) {
    if (bytes.size() < 2) return Encoding::utf8;
    if (bytes.starts_with("\xFF\xFE") || bytes[1] == '\0') return Encoding::utf16LittleEndian;
    if (bytes.starts_with("\xFE\xFF") || bytes[0] == '\0') return Encoding::utf16BigEndian;
    return Encoding::utf8;
}

bool equalsIgnoringCase(std::string_view a, std::string_view lowerCased) {
    return std::equal(a.begin(), a.end(), lowerCased.begin(), lowerCased.end(),
                      [](char x, char y) { return (x >= 'A' && x <= 'Z' ? x - 'A' + 'a' : x) == y; });
}

/// Listens to the parser during one pass and keeps the best place for the property so far.
class Pass {
public:
    Pass(XML_Parser parser, std::string_view bytes, std::string_view name)
        : m_parser{parser}, m_property{Namespace::xmp, name} {
        m_scan.encoding = encodingWithoutDeclaration(bytes);
        XML_SetUserData(parser, this);
        XML_SetElementHandler(
            parser,
            [](void* self, const XML_Char* element, const XML_Char** attributes) {
                static_cast<Pass*>(self)->startElement(element, attributes);
            },
            [](void* self, const XML_Char*) { static_cast<Pass*>(self)->endElement(); });
        XML_SetXmlDeclHandler(parser, [](void* self, const XML_Char*, const XML_Char* encoding, int) {
            static_cast<Pass*>(self)->declareEncoding(encoding);
        });
        // Declared entities and default attributes are ways to make few bytes cost much time, and no sidecar
        // needs them.
        XML_SetEntityDeclHandler(parser, [](void* self, const XML_Char*, int, const XML_Char*, int,
                                            const XML_Char*, const XML_Char*, const XML_Char*,
                                            const XML_Char*) { static_cast<Pass*>(self)->refuse(); });
        XML_SetAttlistDeclHandler(parser, [](void* self, const XML_Char*, const XML_Char*, const XML_Char*,
                                             const XML_Char*, int) { static_cast<Pass*>(self)->refuse(); });
    }

    [[nodiscard]] bool hasDescription() const { return m_descriptionCount > 0; }
    SidecarScan takeScan() { return std::move(m_scan); }

private:
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    void refuse() { XML_StopParser(m_parser, XML_FALSE); }

    [[nodiscard]] Range currentRange() const {
        return {static_cast<std::size_t>(XML_GetCurrentByteIndex(m_parser)),
                static_cast<std::size_t>(XML_GetCurrentByteCount(m_parser))};
    }

    void declareEncoding(const XML_Char* encoding) {
        if (encoding && equalsIgnoringCase(encoding, "iso-8859-1")) m_scan.encoding = Encoding::latin1;
    }

    void startElement(const XML_Char* qualifiedName, const XML_Char** attributes) {
        const auto depth = m_descriptions.size();
        const auto parent = m_descriptions.empty() ? none : m_descriptions.back();
        m_descriptions.push_back(none);
        if (depth >= maximumDepth || !resolve(attributes, depth)) return refuse();
        const auto name = m_scope.element(qualifiedName);
        if (!name) return refuse();
        if (parent < m_bestDescription && name == m_property) startProperty(parent, depth, attributes);
        if (name == ExpandedName{Namespace::rdf, "Description"}) startDescription(attributes);
    }

    void endElement() {
        m_descriptions.pop_back();
        if (m_descriptions.size() == m_propertyDepth) endProperty();
        m_scope.leave(m_descriptions.size());
    }

    /// Takes the element's namespace declarations; false where one is wrong or an attribute's prefix unknown.
    bool resolve(const XML_Char** attributes, std::size_t depth) {
        for (auto attribute = attributes; *attribute; attribute += 2) {
            if (!m_scope.declare(attribute[0], attribute[1], depth)) return false;
        }
        for (auto attribute = attributes; *attribute; attribute += 2) {
            if (!m_scope.attribute(*attribute)) return false;
        }
        return true;
    }

    void startDescription(const XML_Char** attributes) {
        const auto number = m_descriptionCount++;
        m_descriptions.back() = number;
        if (number == 0) {
            const auto prefix = m_scope.xmpPrefix();
            m_scan.firstDescription = {.tag = currentRange(),
                                       .prefix = prefix ? *prefix : m_scope.unboundPrefix(),
                                       .isPrefixDeclared = prefix.has_value()};
        }
        if (number > m_bestDescription) return;
        for (; *attributes; attributes += 2) {
            if (m_scope.attribute(*attributes) != m_property) continue;
            if (m_bestDescription == number) return refuse(); // twice, under two prefixes
            m_bestDescription = number;
            m_scan.value = attributes[1];
            m_scan.place = SidecarScan::Attribute{currentRange(), *attributes};
        }
    }

    void startProperty(std::size_t description, std::size_t depth, const XML_Char** attributes) {
        m_bestDescription = description;
        m_propertyDepth = depth;
        m_scan.value.clear();
        SidecarScan::Element element{.tag = currentRange(), .content = {}, .isStructured = false};
        for (; *attributes; attributes += 2) {
            const auto name = *m_scope.attribute(*attributes);
            if (name.space == Namespace::rdf && name.local != "datatype") element.isStructured = true;
        }
        m_scan.place = element;
        // Texts matter only in here, and the parser is faster while nobody listens for them.
        XML_SetCharacterDataHandler(m_parser, [](void* self, const XML_Char* text, int length) {
            static_cast<Pass*>(self)->m_scan.value.append(text, static_cast<std::size_t>(length));
        });
    }

    void endProperty() {
        auto& element = std::get<SidecarScan::Element>(m_scan.place);
        const auto start = element.tag.end();
        element.content = {start, currentRange().offset - start};
        m_propertyDepth = none;
        XML_SetCharacterDataHandler(m_parser, nullptr);
    }

    XML_Parser m_parser;
    ExpandedName m_property;
    SidecarScan m_scan;
    NamespaceScope m_scope;
    std::vector<std::size_t> m_descriptions; // every open element's number as a description, or none
    std::size_t m_descriptionCount = 0;
    std::size_t m_bestDescription = none; // the one that holds the place found so far
    std::size_t m_propertyDepth = none;   // while the property's element is open: the elements around it
};

} // namespace

SidecarScanner::SidecarScanner() : m_parser{XML_ParserCreate(nullptr), XML_ParserFree} {}
SidecarScanner::~SidecarScanner() = default;

std::optional<SidecarScan> SidecarScanner::scan(std::string_view bytes, std::string_view name) {
    if (!m_parser || bytes.size() > maximumSidecarSize) return std::nullopt;
    XML_ParserReset(m_parser.get(), nullptr);
    Pass pass{m_parser.get(), bytes, name};
    const auto status = XML_Parse(m_parser.get(), bytes.data(), static_cast<int>(bytes.size()), XML_TRUE);
    if (status != XML_STATUS_OK || !pass.hasDescription()) return std::nullopt;
    return pass.takeScan();
}

} // namespace kelvara::xmp
