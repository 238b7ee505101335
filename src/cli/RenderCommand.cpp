#include "cli/RenderCommand.h"

#include "presets/PresetRenderer.h"

#include <CLI/CLI.hpp>

namespace kelvara::cli {

RenderCommand::RenderCommand(CLI::App& app, FileSystem& files)
    : PictureCommand{app, "render", "Draw a photo through a develop preset and light edits", files},
      m_preset{*m_command, PresetArgument::Need::optional}, m_light{*m_command, "--light"} {
    m_command->add_option("--size", m_size, "The most pixels of its longest side")
        ->check(CLI::Range(1, largestSize))
        ->option_text("PIXELS");
}

ExitCode RenderCommand::run() const {
    const auto preset = m_preset.load();
    if (!preset) return fail(preset.error());
    LightAdjustments light;
    m_light.setOn(light);
    const auto look = DevelopPreset::combining(*preset, light);
    const auto size = m_size > 0 ? std::optional{m_size} : std::nullopt;
    return make(size, [&](BitmapPtr picture, const std::stop_token& stop) {
        return look ? PresetRenderer::apply(*look, std::move(picture), Depth::eight, stop) : picture;
    });
}

} // namespace kelvara::cli
