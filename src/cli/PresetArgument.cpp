#include "cli/PresetArgument.h"

#include "presets/NumberText.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <fmt/format.h>
#include <system_error>
#include <unistd.h>

namespace kelvara::cli {

namespace {

std::string checkStrength(const std::string& text) {
    const auto number = parsedNumber(text);
    return number && *number >= 0 && *number <= 1 ? std::string{}
                                                  : "The strength must be a number from 0 to 1";
}

} // namespace

Result<DevelopPreset, CommandError> loadedPreset(const std::string& path) {
    const auto file = resolved(path);
    if (!file) return Failure{file.error()};
    if (::access(file->path().c_str(), R_OK) != 0) {
        const std::error_code code{errno, std::generic_category()};
        return Failure{CommandError{fmt::format("{}: {}", printable(file->path()), code.message())}};
    }
    auto preset = DevelopPreset::load(*file);
    if (!preset) return Failure{CommandError{printable(message(preset.error()))}};
    return std::move(*preset);
}

PresetArgument::PresetArgument(CLI::App& command, Need need) {
    auto* preset = command.add_option("--preset", m_path, "An .lrtemplate or .xmp file")
                       ->required(need == Need::required)
                       ->option_text("FILE");
    command.add_option("--amount", m_amount, "The preset's strength, 0 to 1")
        ->needs(preset)
        ->check(checkStrength)
        ->option_text("NUMBER");
}

Result<std::optional<DevelopPreset>, CommandError> PresetArgument::load() const {
    if (m_path.empty()) return std::optional<DevelopPreset>{};
    auto preset = loadedPreset(m_path);
    if (!preset) return Failure{preset.error()};
    return std::optional{preset->withAmount(m_amount)};
}

} // namespace kelvara::cli
