#pragma once

#include "cli/Command.h"
#include "platform/FileSystem.h"

#include <string>

namespace kelvara::cli {

/// `kelvara-cli ratings`: the stars of every shot of a folder that has a RAW file.
class RatingsCommand : public Command {
public:
    /// Both outlive it.
    RatingsCommand(CLI::App& app, FileSystem& files);

    ExitCode run() const override;

private:
    FileSystem& m_files;
    std::string m_folder;
};

} // namespace kelvara::cli
