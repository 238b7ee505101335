#pragma once

#include "cli/Command.h"
#include "platform/FileSystem.h"

#include <string>

namespace kelvara::cli {

/// `kelvara-cli thumbnail`: a small picture of a photo or video, as the grid shows it.
class ThumbnailCommand : public Command {
public:
    /// Adds the subcommand to `app`; both outlive it.
    ThumbnailCommand(CLI::App& app, FileSystem& files);

    ExitCode run() const override;

private:
    FileSystem& m_files;
    std::string m_file;
    int m_size = 0;
    std::string m_output;
};

} // namespace kelvara::cli
