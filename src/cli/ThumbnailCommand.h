#pragma once

#include "cli/PictureCommand.h"

namespace kelvara::cli {

/// `kelvara-cli thumbnail`: a small picture of a photo or video, as the grid shows it.
class ThumbnailCommand : public PictureCommand {
public:
    /// Adds the subcommand to `app`; both outlive it.
    ThumbnailCommand(CLI::App& app, FileSystem& files);

    ExitCode run() const override;

private:
    int m_size = 0;
};

} // namespace kelvara::cli
