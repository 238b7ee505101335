#include "cli/RenderCommand.h"

#include "cli/PresetArgument.h"
#include "presets/PresetRenderer.h"

#include <CLI/CLI.hpp>

namespace kelvara::cli {

RenderCommand::RenderCommand(CLI::App& app, FileSystem& files)
    : PictureCommand{app, "render", "Draw a photo through a develop preset", files} {
    m_command->add_option("--preset", m_preset, "An .lrtemplate or .xmp file")
        ->required()
        ->option_text("FILE");
    m_command->add_option("--amount", m_amount, "The preset's strength, 0 to 1")
        ->check(CLI::Range(0.0, 1.0))
        ->option_text("NUMBER");
    m_command->add_option("--size", m_size, "The most pixels of its longest side")
        ->check(CLI::Range(1, largestSize))
        ->option_text("PIXELS");
}

ExitCode RenderCommand::run() const {
    const auto preset = loadedPreset(m_preset);
    if (!preset) return printError(preset.error().text), preset.error().code;
    const auto size = m_size > 0 ? std::optional{m_size} : std::nullopt;
    return make(size, [&](BitmapPtr picture, const std::stop_token& stop) {
        return PresetRenderer::apply(preset->withAmount(m_amount), std::move(picture), Depth::eight, stop);
    });
}

} // namespace kelvara::cli
