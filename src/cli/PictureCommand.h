#pragma once

#include "cli/Command.h"
#include "imaging/Bitmap.h"
#include "platform/FileSystem.h"

#include <functional>
#include <optional>
#include <stop_token>

namespace kelvara::cli {

/// A command that makes a picture of a photo or video and writes it to a file.
class PictureCommand : public Command {
protected:
    /// What becomes of the picture before it is written; null when it can't or should stop.
    using Change = std::function<BitmapPtr(BitmapPtr picture, const std::stop_token& stop)>;

    static constexpr int largestSize = 16'384;

    /// Adds the subcommand to `app`, with its FILE and its "--output"; `files` outlives it too.
    PictureCommand(CLI::App& app, const std::string& name, const std::string& description, FileSystem& files);

    /// Reads FILE, its longest side at most `size`, and writes what `change` makes of it, in sRGB.
    [[nodiscard]] ExitCode make(std::optional<int> size, const Change& change) const;

private:
    FileSystem& m_files;
    std::string m_file;
    std::string m_output;
};

} // namespace kelvara::cli
