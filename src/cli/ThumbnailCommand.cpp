#include "cli/ThumbnailCommand.h"

#include <CLI/CLI.hpp>

namespace kelvara::cli {

ThumbnailCommand::ThumbnailCommand(CLI::App& app, FileSystem& files)
    : PictureCommand{app, "thumbnail", "Make a small picture of a photo or video", files} {
    m_command->add_option("--size", m_size, "The most pixels of its longest side")
        ->required()
        ->check(CLI::Range(1, largestSize))
        ->option_text("PIXELS");
}

ExitCode ThumbnailCommand::run() const {
    return make(m_size, [](BitmapPtr picture, const std::stop_token&) { return picture; });
}

} // namespace kelvara::cli
