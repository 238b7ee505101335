#include "services/xmp/SidecarEdit.h"

#include "services/xmp/NamespaceScope.h"
#include "services/xmp/SidecarScan.h"

#include <algorithm>

namespace kelvara::xmp {

namespace {

/// One stretch of the document and the bytes that take its place.
struct Splice {
    Range range;
    std::string bytes;
};

std::optional<Splice> replacement(Range range, std::string_view text, Encoding encoding) {
    auto bytes = encoded(text, encoding);
    if (!bytes) return std::nullopt;
    return Splice{range, std::move(*bytes)};
}

std::optional<Splice> replacingValue(const EncodedText& text, const SidecarScan::Attribute& place,
                                     std::string_view value) {
    const auto tag = StartTag::parse(text, place.tag);
    const auto name = encoded(place.qualifiedName, text.encoding());
    if (!tag || !name) return std::nullopt;
    const auto attribute = std::find_if(
        tag->attributes.begin(), tag->attributes.end(),
        [&](const StartTag::Attribute& candidate) { return candidate.name.of(text.bytes()) == *name; });
    if (attribute == tag->attributes.end()) return std::nullopt;
    return replacement(attribute->value, value, text.encoding());
}

std::optional<Splice> replacingText(const EncodedText& text, const SidecarScan::Element& place,
                                    std::string_view value) {
    const auto tag = StartTag::parse(text, place.tag);
    // A text beside rdf:parseType="Resource" and the like would spoil the whole sidecar for other programs.
    if (!tag || place.isStructured) return std::nullopt;
    if (!tag->isEmptyElement) return replacement(place.content, value, text.encoding());

    auto opening = encoded(std::string{">"}.append(value).append("</"), text.encoding());
    const auto closing = encoded(">", text.encoding());
    if (!opening || !closing) return std::nullopt;
    return Splice{{tag->close, place.tag.end() - tag->close},
                  opening->append(tag->name.of(text.bytes())).append(*closing)};
}

std::optional<Splice> addingAttribute(const EncodedText& text, const SidecarScan::Description& description,
                                      std::string_view name, std::string_view value) {
    const auto tag = StartTag::parse(text, description.tag);
    if (!tag) return std::nullopt;
    // Written as the attribute before it is: beside it, or below it on a line of its own.
    const auto space = tag->attributes.empty() ? encoded(" ", text.encoding())
                                               : std::string{tag->attributes.back().space.of(text.bytes())};
    std::string bytes;
    const auto add = [&](std::string_view qualifier, std::string_view local, std::string_view content) {
        const auto attribute = encoded(
            std::string{qualifier}.append(":").append(local).append("=\"").append(content).append("\""),
            text.encoding());
        if (!space || !attribute) return false;
        bytes.append(*space).append(*attribute);
        return true;
    };
    if (!description.isPrefixDeclared && !add("xmlns", description.prefix, xmpNamespace)) return std::nullopt;
    if (!add(description.prefix, name, value)) return std::nullopt;
    return Splice{{tag->attributesEnd, 0}, std::move(bytes)};
}

} // namespace

std::optional<std::string> settingProperty(std::string_view bytes, std::string_view name,
                                           std::string_view value) {
    const auto scan = SidecarScanner{}.scan(bytes, name);
    if (!scan) return std::nullopt;
    const EncodedText text{bytes, scan->encoding};

    std::optional<Splice> splice;
    if (const auto* attribute = std::get_if<SidecarScan::Attribute>(&scan->place)) {
        splice = replacingValue(text, *attribute, value);
    } else if (const auto* element = std::get_if<SidecarScan::Element>(&scan->place)) {
        splice = replacingText(text, *element, value);
    } else {
        splice = addingAttribute(text, scan->firstDescription, name, value);
    }
    if (!splice) return std::nullopt;

    std::string edited;
    edited.reserve(bytes.size() + splice->bytes.size());
    edited.append(bytes.substr(0, splice->range.offset)).append(splice->bytes);
    edited.append(bytes.substr(splice->range.end()));
    return edited;
}

} // namespace kelvara::xmp
