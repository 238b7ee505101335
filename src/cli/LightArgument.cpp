#include "cli/LightArgument.h"

#include "presets/NumberText.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <fmt/format.h>
#include <optional>
#include <utility>

namespace kelvara::cli {

namespace {

using Slider = LightAdjustments::Slider;

std::optional<std::pair<Slider, double>> parsed(std::string_view text) {
    const auto equals = text.find('=');
    if (equals == std::string_view::npos) return std::nullopt;
    const auto slider = LightAdjustments::fromRawValue(text.substr(0, equals));
    const auto value = parsedNumber(text.substr(equals + 1));
    if (!slider || !value || !(std::abs(*value) <= LightAdjustments::limit(*slider))) return std::nullopt;
    return std::pair{*slider, *value};
}

std::string check(const std::string& text) {
    return parsed(text)
               ? std::string{}
               : fmt::format("“{}” must be exposure=-5...5, or contrast, highlights, shadows, whites "
                             "or blacks=-100...100",
                             text);
}

} // namespace

LightArgument::LightArgument(CLI::App& command, const std::string& name) {
    command.add_option(name, m_settings, "A light slider, such as exposure=0.35; as often as wanted")
        ->check(check)
        ->allow_extra_args(false)
        ->option_text("SLIDER=NUMBER");
}

void LightArgument::setOn(LightAdjustments& light) const {
    for (const auto& text : m_settings) {
        if (const auto setting = parsed(text)) light.set(setting->first, setting->second);
    }
}

} // namespace kelvara::cli
