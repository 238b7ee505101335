#include "cli/AutoToneCommand.h"

#include "cli/InterruptWatch.h"
#include "cli/PictureReading.h"
#include "presets/AutoTone.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <iterator>

namespace kelvara::cli {

namespace {

/// As large as a screen: what the window shows a photo with, without developing a RAW file.
constexpr int decodedSize = 2048;
constexpr int sampleSize = 512;

} // namespace

AutoToneCommand::AutoToneCommand(CLI::App& app)
    : Command{app, "auto-tone", "Find light edits for a balanced exposure"},
      m_preset{*m_command, PresetArgument::Need::optional} {
    m_command->add_option("FILE", m_file, "A photo or video")->required();
}

ExitCode AutoToneCommand::run() const {
    const auto file = readableFile(m_file);
    if (!file) return fail(file.error());
    const auto preset = m_preset.load();
    if (!preset) return fail(preset.error());
    const InterruptWatch interrupt;
    const auto picture = pictureIn(*file, decodedSize, interrupt.token());
    if (!picture) return fail(picture.error());
    const auto histogram = Histogram::of(*picture, sampleSize);
    if (!histogram) return fail({"There is not enough memory."});

    const auto light = AutoTone::adjustments(*histogram, *preset);
    JSON json;
    std::string text;
    setPath(json, "file", "fileURL", *file);
    for (const auto slider : LightAdjustments::sliders) {
        const std::string name{LightAdjustments::rawValue(slider)};
        json["edits"][name] = light[slider];
        fmt::format_to(std::back_inserter(text), "{:10}  {}\n", name,
                       LightAdjustments::text(slider, light[slider]));
    }
    json["luminance"] = histogram->luminance;
    if (m_asJSON)
        printJSON(json);
    else
        printText(text);
    return ExitCode::success;
}

} // namespace kelvara::cli
