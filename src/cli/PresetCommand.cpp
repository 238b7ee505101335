#include "cli/PresetCommand.h"

#include "cli/PresetArgument.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <iterator>

namespace kelvara::cli {

namespace {

JSON toJSON(const PresetLook::PointCurve& curve) {
    return {{"xs", curve.xs}, {"ys", curve.ys}, {"m", curve.m}};
}
JSON toJSON(const PresetLook::Vignette& vignette) {
    return {{"amount", vignette.amount}, {"midpoint", vignette.midpoint}, {"feather", vignette.feather}};
}
JSON toJSON(const PresetLook::Grain& grain) { return {{"amount", grain.amount}, {"size", grain.size}}; }

template <typename T> JSON orNull(const std::optional<T>& part) {
    return part ? toJSON(*part) : JSON(nullptr);
}

JSON toJSON(const PresetLook::ParametricCurve& curve) {
    auto zones = JSON::array();
    for (const auto& zone : curve.zones) {
        zones.push_back({{"lower", zone.lower}, {"upper", zone.upper}, {"amount", zone.amount}});
    }
    return zones;
}

JSON toJSON(const std::vector<PresetLook::Grade>& grades) {
    constexpr std::array<const char*, 4> ranges{"shadows", "midtones", "highlights", "global"};
    auto list = JSON::array();
    for (const auto& grade : grades) {
        list.push_back({{"range", ranges[static_cast<std::size_t>(grade.range)]},
                        {"tint", grade.tint},
                        {"saturation", grade.saturation},
                        {"luminance", grade.luminance}});
    }
    return list;
}

JSON toJSON(const PresetLook& look) {
    return {{"isMonochrome", look.isMonochrome},
            {"clarity", look.clarity},
            {"texture", look.texture},
            {"vignette", orNull(look.vignette)},
            {"grain", orNull(look.grain)},
            {"isIdentity", look.isIdentity},
            {"linearGain", look.linearGain},
            {"contrast", look.contrast},
            {"highlights", look.highlights},
            {"shadows", look.shadows},
            {"whites", look.whites},
            {"blacks", look.blacks},
            {"parametric", toJSON(look.parametric)},
            {"master", orNull(look.master)},
            {"red", orNull(look.red)},
            {"green", orNull(look.green)},
            {"blue", orNull(look.blue)},
            {"grayMix", look.grayMix},
            {"hueShift", look.hueShift},
            {"saturationShift", look.saturationShift},
            {"luminanceShift", look.luminanceShift},
            {"hasHSL", look.hasHSL},
            {"saturation", look.saturation},
            {"vibrance", look.vibrance},
            {"grades", toJSON(look.grades)},
            {"gradeBalance", look.gradeBalance},
            {"gradeBlending", look.gradeBlending}};
}

JSON toJSON(const DevelopPreset& preset) {
    auto settings = JSON::object();
    for (const auto& [key, value] : preset.settings) {
        std::visit([&, name = &key](const auto& content) { settings[*name] = content; }, value);
    }
    return {{"id", preset.id},
            {"title", preset.title},
            {"settings", std::move(settings)},
            {"unsupportedSettings", preset.unsupportedSettings},
            {"look", toJSON(preset.look)}};
}

std::string text(const DevelopPreset& preset) {
    auto text = printable(preset.title) + '\n';
    for (const auto& group : preset.unsupportedSettings) {
        fmt::format_to(std::back_inserter(text), "Not shown: {}\n", printable(group));
    }
    for (const auto& [key, value] : preset.settings) {
        const auto shown = std::visit([](const auto& content) { return fmt::format("{}", content); }, value);
        fmt::format_to(std::back_inserter(text), "{}  {}\n", printable(key), printable(shown));
    }
    return text;
}

} // namespace

PresetCommand::PresetCommand(CLI::App& app)
    : Command{app, "preset", "Show what a develop preset sets, and what its look is made of"} {
    m_command->add_option("FILE", m_file, "An .lrtemplate or .xmp file")->required();
}

ExitCode PresetCommand::run() const {
    const auto file = resolved(m_file);
    if (!file) return fail(file.error());
    const auto preset = loadedPreset(m_file);
    if (!preset) return fail(preset.error());
    if (!m_asJSON) {
        printText(text(*preset));
        return ExitCode::success;
    }
    JSON json;
    setPath(json, "file", "fileURL", *file);
    json.update(toJSON(*preset));
    printJSON(json);
    return ExitCode::success;
}

} // namespace kelvara::cli
