#pragma once

#include "services/xmp/EncodedText.h"

#include <string>
#include <string_view>

namespace kelvara::xmptest {

inline constexpr std::string_view rdfURI = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
inline constexpr std::string_view xmpURI = "http://ns.adobe.com/xap/1.0/";

inline std::string replacing(std::string text, std::string_view from, std::string_view to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

/// RDF around `inner`, with the prefixes rdf and xmp bound at its root.
inline std::string packet(const std::string& inner) {
    return "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF xmlns:rdf='" + std::string{rdfURI} +
           "' xmlns:xmp='" + std::string{xmpURI} + "'>" + inner + "</rdf:RDF></x:xmpmeta>";
}

/// One description with these attributes and children.
inline std::string description(const std::string& attributes, const std::string& children = {}) {
    return packet("<rdf:Description " + attributes + ">" + children + "</rdf:Description>");
}

/// UTF-8 as UTF-16, after a byte-order mark unless told otherwise.
inline std::string utf16(std::string_view text, bool isBigEndian, bool hasMark = true) {
    const auto encoding = isBigEndian ? xmp::Encoding::utf16BigEndian : xmp::Encoding::utf16LittleEndian;
    const std::string mark = !hasMark ? "" : isBigEndian ? "\xFE\xFF" : "\xFF\xFE";
    return mark + xmp::encoded(text, encoding).value();
}

} // namespace kelvara::xmptest
