#include "presets/NumberText.h"
#include "presets/PresetFile.h"

#include <cmath>
#include <expat.h>
#include <memory>

namespace kelvara {

namespace {

constexpr std::string_view rdf = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
constexpr std::string_view cameraRaw = "http://ns.adobe.com/camera-raw-settings/1.0/";
constexpr char namespaceEnd = '\n'; // which no namespace has

/// The parser's memory grows with every level.
constexpr std::size_t maximumDepth = 512;

bool isRDF(std::string_view name, std::string_view local) {
    return name.size() == rdf.size() + 1 + local.size() && name.starts_with(rdf) && name.ends_with(local) &&
           name[rdf.size()] == namespaceEnd;
}

/// The name within the Camera Raw namespace; empty for any other.
std::string_view cameraRawName(std::string_view name) {
    if (!name.starts_with(cameraRaw) || name.size() <= cameraRaw.size()) return {};
    return name[cameraRaw.size()] == namespaceEnd ? name.substr(cameraRaw.size() + 1) : std::string_view{};
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view spaces = " \t\r\n";
    const auto first = text.find_first_not_of(spaces);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(spaces) - first + 1);
}

std::optional<double> finiteNumber(std::string_view text) {
    const auto number = parsedNumber(text);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

PresetValue setting(std::string_view text) {
    if (text == "True") return true;
    if (text == "False") return false;
    if (const auto number = finiteNumber(text)) return *number;
    return std::string{text};
}

/// The numbers of a curve's points, "x, y" each. One that is anything else is left out, lest the rest trade
/// places.
std::vector<double> curve(const std::vector<std::string>& points) {
    std::vector<double> numbers;
    for (const std::string_view point : points) {
        const auto comma = std::min(point.find(','), point.size());
        const auto x = finiteNumber(trimmed(point.substr(0, comma)));
        const auto y = finiteNumber(trimmed(point.substr(std::min(comma + 1, point.size()))));
        if (x && y) numbers.insert(numbers.end(), {*x, *y});
    }
    return numbers;
}

/// Listens to the parser during one pass over a document.
///
/// Settings are those of the outermost descriptions: the ones within belong to looks, masks and the like.
/// Where descriptions repeat a setting, the first counts, and attributes come before elements.
class Pass {
public:
    explicit Pass(XML_Parser parser) : m_parser{parser} {
        XML_SetUserData(parser, this);
        XML_SetElementHandler(
            parser,
            [](void* self, const XML_Char* name, const XML_Char** attributes) {
                static_cast<Pass*>(self)->startElement(name, attributes);
            },
            [](void* self, const XML_Char*) { static_cast<Pass*>(self)->endElement(); });
        XML_SetCharacterDataHandler(parser, [](void* self, const XML_Char* text, int length) {
            static_cast<Pass*>(self)->addText({text, static_cast<std::size_t>(length)});
        });
        // Declared entities and default attributes are ways to make few bytes cost much time, and no preset
        // needs them.
        XML_SetEntityDeclHandler(parser, [](void* self, const XML_Char*, int, const XML_Char*, int,
                                            const XML_Char*, const XML_Char*, const XML_Char*,
                                            const XML_Char*) { static_cast<Pass*>(self)->refuse(); });
        XML_SetAttlistDeclHandler(parser, [](void* self, const XML_Char*, const XML_Char*, const XML_Char*,
                                             const XML_Char*, int) { static_cast<Pass*>(self)->refuse(); });
    }

    [[nodiscard]] bool hasSettings() const { return m_hasSettings; }

    PresetFile takeFile() {
        m_settings.merge(m_elementSettings);
        if (!m_look.empty()) m_settings.try_emplace("CameraProfile", std::move(m_look));
        PresetFile file;
        file.title = text("Name", m_title);
        file.group = text("Group", m_group);
        file.settings = std::move(m_settings);
        return file;
    }

private:
    /// What an open element is to a preset.
    enum class Role { other, insignificant, description, property, collection, item, look, lookName };

    /// An element in the Camera Raw namespace of a description.
    struct Property {
        std::string name;
        std::string text;
        std::vector<std::string> items; // of the list in it
        std::string lookName;           // of the look in it
        bool hasElements = false;
    };

    /// The text of an element, else the setting of its name.
    [[nodiscard]] std::optional<std::string> text(std::string_view name, const std::string& element) const {
        if (!element.empty()) return element;
        const auto found = m_settings.find(name);
        const auto* text = found == m_settings.end() ? nullptr : std::get_if<std::string>(&found->second);
        return text == nullptr ? std::nullopt : std::optional{*text};
    }

    void refuse() { XML_StopParser(m_parser, XML_FALSE); }

    void startElement(std::string_view name, const XML_Char** attributes) {
        if (m_roles.size() == maximumDepth) return refuse();
        m_roles.push_back(roleOf(name));
        switch (m_roles.back()) {
        case Role::description:
            return takeSettings(attributes);
        case Role::property:
            m_hasSettings = true;
            m_property = {.name = std::string{cameraRawName(name)}, .text = {}, .items = {}, .lookName = {}};
            return m_property.name == "Look" ? takeLookName(attributes) : void();
        case Role::look:
            return takeLookName(attributes);
        case Role::item:
            m_property.items.emplace_back();
            return;
        default:
            return;
        }
    }

    /// For an element that starts inside the open ones.
    [[nodiscard]] Role roleOf(std::string_view name) {
        const auto parent = m_roles.empty() ? Role::other : m_roles.back();
        switch (parent) {
        case Role::other:
            return isRDF(name, "Description") ? Role::description : Role::other;
        case Role::description:
            return cameraRawName(name).empty() ? Role::insignificant : Role::property;
        case Role::property:
            m_property.hasElements = true;
            if (m_property.name == "Look" && isRDF(name, "Description")) return Role::look;
            return isRDF(name, "Seq") || isRDF(name, "Alt") ? Role::collection : Role::insignificant;
        case Role::collection:
            return isRDF(name, "li") ? Role::item : Role::insignificant;
        case Role::look:
            return isLookName(name) ? Role::lookName : Role::insignificant;
        default:
            return Role::insignificant;
        }
    }

    [[nodiscard]] bool isLookName(std::string_view name) const {
        return cameraRawName(name) == "Name" && m_property.lookName.empty();
    }

    void endElement() {
        const auto role = m_roles.back();
        m_roles.pop_back();
        if (role == Role::property) finishProperty();
    }

    void addText(std::string_view text) {
        const auto role = m_roles.empty() ? Role::other : m_roles.back();
        if (role == Role::property) m_property.text += text;
        if (role == Role::item) m_property.items.back() += text;
        if (role == Role::lookName) m_property.lookName += text;
    }

    void takeSettings(const XML_Char** attributes) {
        for (; *attributes != nullptr; attributes += 2) {
            const auto name = cameraRawName(attributes[0]);
            if (name.empty()) continue;
            m_hasSettings = true;
            m_settings.try_emplace(std::string{name}, setting(attributes[1]));
        }
    }

    void takeLookName(const XML_Char** attributes) {
        for (; *attributes != nullptr; attributes += 2) {
            if (isLookName(attributes[0])) m_property.lookName = attributes[1];
        }
    }

    void finishProperty() {
        const auto& [name, text, items, lookName, hasElements] = m_property;
        if (name == "Name") {
            if (m_title.empty()) m_title = items.empty() ? trimmed(text) : trimmed(items.front());
        } else if (name == "Group") {
            if (m_group.empty()) m_group = items.empty() ? trimmed(text) : trimmed(items.front());
        } else if (name.starts_with("ToneCurve") && !items.empty()) {
            m_elementSettings.try_emplace(name, curve(items));
        } else if (name == "Look") {
            if (m_look.empty()) m_look = trimmed(lookName);
        } else if (!hasElements) {
            m_elementSettings.try_emplace(name, setting(trimmed(text)));
        }
    }

    XML_Parser m_parser;
    std::vector<Role> m_roles; // of every open element
    Property m_property;       // the open one, or the last
    PresetSettings m_settings;
    PresetSettings m_elementSettings;
    std::string m_title;
    std::string m_group;
    std::string m_look;
    bool m_hasSettings = false;
};

} // namespace

Result<PresetFile, PresetFile::Problem> PresetFile::readXMP(std::string_view bytes) {
    const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser{
        XML_ParserCreateNS(nullptr, namespaceEnd), XML_ParserFree};
    if (!parser) return Failure{Problem::unreadable};
    Pass pass{parser.get()};
    const auto status = XML_Parse(parser.get(), bytes.data(), static_cast<int>(bytes.size()), XML_TRUE);
    if (status != XML_STATUS_OK) return Failure{Problem::unreadable};
    if (!pass.hasSettings()) return Failure{Problem::notADevelopPreset};

    auto file = pass.takeFile();
    const auto type = file.settings.find("PresetType");
    if (type != file.settings.end() && std::holds_alternative<std::string>(type->second) &&
        std::get<std::string>(type->second) != "Normal") {
        return Failure{Problem::notADevelopPreset};
    }
    return file;
}

} // namespace kelvara
