#include "cli/LookCommand.h"

#include "presets/NumberText.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <iterator>
#include <sstream>

namespace kelvara::cli {

namespace {

constexpr std::int64_t maximumBytes = 64 * 1024 * 1024;

std::optional<RGB> parsedColor(const std::string& line) {
    std::istringstream words{line};
    RGB color{};
    std::string word;
    for (auto& channel : color) {
        words >> word;
        const auto number = words ? parsedNumber(word) : std::nullopt;
        if (!number || !(*number >= 0 && *number <= 1)) return std::nullopt;
        channel = *number;
    }
    return words >> word ? std::nullopt : std::optional{color};
}

Result<std::vector<RGB>, CommandError> parsedColors(const std::string& text) {
    std::vector<RGB> colors;
    std::istringstream lines{text};
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        const auto color = parsedColor(line);
        if (!color) {
            return Failure{CommandError{fmt::format("Line {} isn't three numbers from 0 to 1.", number)}};
        }
        colors.push_back(*color);
    }
    return colors;
}

} // namespace

LookCommand::LookCommand(CLI::App& app, const FileSystem& files)
    : Command{app, "look", "Show what a develop preset makes of colours"}, m_files{files},
      m_preset{*m_command, PresetArgument::Need::required} {
    m_command->add_option("--colors", m_colors, "A file with red, green and blue, 0 to 1, on every line")
        ->required()
        ->option_text("FILE");
}

ExitCode LookCommand::run() const {
    const auto preset = m_preset.load();
    if (!preset) return fail(preset.error());
    const auto file = resolved(m_colors);
    if (!file) return fail(file.error());
    const auto bytes = m_files.readFile(*file, maximumBytes);
    if (!bytes) return fail({printable(message(bytes.error()))});
    auto colors = parsedColors(*bytes);
    if (!colors) return fail(colors.error());

    const auto& applied = **preset;
    for (auto& color : *colors) color = applied.apply(color);
    if (m_asJSON) {
        printJSON({{"title", applied.titleWithAmount()}, {"colors", *colors}});
        return ExitCode::success;
    }
    std::string text;
    for (const auto& [r, g, b] : *colors) {
        fmt::format_to(std::back_inserter(text), "{:.17g} {:.17g} {:.17g}\n", r, g, b);
    }
    printText(text);
    return ExitCode::success;
}

} // namespace kelvara::cli
