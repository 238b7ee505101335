#include "model/ExportSettings.h"

#include <nlohmann/json.hpp>

namespace kelvara {

namespace {

struct FormatNames {
    std::string_view rawValue;
    std::string_view displayName;
    std::string_view fileExtension;
};

constexpr std::array<FormatNames, 3> names{
    {{"jpeg", "JPEG", "jpg"}, {"heif", "HEIF", "heic"}, {"png", "PNG", "png"}}};

const FormatNames& namesOf(ExportSettings::Format format) { return names[static_cast<std::size_t>(format)]; }

} // namespace

std::string_view ExportSettings::rawValue(Format format) { return namesOf(format).rawValue; }

std::optional<ExportSettings::Format> ExportSettings::formatFromRawValue(std::string_view text) {
    for (const auto format : formats) {
        if (rawValue(format) == text) return format;
    }
    return std::nullopt;
}

std::string_view ExportSettings::displayName(Format format) { return namesOf(format).displayName; }

std::string_view ExportSettings::fileExtension(Format format) { return namesOf(format).fileExtension; }

double ExportSettings::sizeFactor() const {
    if (format != Format::png) return 1;
    return uses16Bit ? 5 : 2.5;
}

std::string ExportSettings::json() const {
    nlohmann::json json{{"format", rawValue(format)},
                        {"quality", quality},
                        {"uses16Bit", uses16Bit},
                        {"keepsLocation", keepsLocation},
                        {"appliesLook", appliesLook}};
    if (longEdge) json["longEdge"] = *longEdge;
    return json.dump();
}

std::optional<ExportSettings> ExportSettings::fromJSON(std::string_view text) {
    const auto json = nlohmann::json::parse(text, nullptr, false);
    if (!json.is_object()) return std::nullopt;
    try {
        const auto format = formatFromRawValue(json.at("format").get<std::string>());
        const auto longEdge = json.find("longEdge");
        ExportSettings settings;
        settings.quality = json.at("quality").get<double>();
        settings.uses16Bit = json.at("uses16Bit").get<bool>();
        settings.keepsLocation = json.at("keepsLocation").get<bool>();
        settings.appliesLook = json.at("appliesLook").get<bool>();
        if (longEdge != json.end() && !longEdge->is_null()) settings.longEdge = longEdge->get<int>();
        const auto isSensible = format && settings.quality >= lowestQuality && settings.quality <= 1 &&
                                settings.longEdge.value_or(1) > 0;
        if (!isSensible) return std::nullopt;
        settings.format = *format;
        return settings;
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

} // namespace kelvara
