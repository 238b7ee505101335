#pragma once

#include <string>

namespace kelvara {

/// A preset in XML that brightens by `exposure` stops.
inline std::string xmpPreset(const std::string& title, double exposure = 1, const std::string& group = {}) {
    const auto alternative = [](const std::string& name, const std::string& text) {
        return "<crs:" + name + "><rdf:Alt><rdf:li xml:lang=\"x-default\">" + text +
               "</rdf:li></rdf:Alt></crs:" + name + ">";
    };
    return "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
           "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description rdf:about=\"\" "
           "xmlns:crs=\"http://ns.adobe.com/camera-raw-settings/1.0/\" crs:PresetType=\"Normal\" "
           "crs:Exposure2012=\"" +
           std::to_string(exposure) + "\">" + (title.empty() ? "" : alternative("Name", title)) +
           alternative("Group", group) + "</rdf:Description></rdf:RDF></x:xmpmeta>";
}

/// The same as a Lua table.
inline std::string luaPreset(const std::string& title, double exposure = 1) {
    return "s = { title = \"" + title +
           "\", type = \"Develop\", value = { settings = { Exposure2012 = " + std::to_string(exposure) +
           " } } }";
}

} // namespace kelvara
