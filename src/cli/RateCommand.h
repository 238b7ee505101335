#pragma once

#include "cli/Command.h"
#include "platform/FileSystem.h"

#include <string>

namespace kelvara::cli {

/// `kelvara-cli rate`: gives one shot its stars, in the sidecar beside its RAW file.
class RateCommand : public Command {
public:
    /// Both outlive it.
    RateCommand(CLI::App& app, FileSystem& files);

    ExitCode run() const override;

private:
    FileSystem& m_files;
    std::string m_file;
    int m_stars = 0;
};

} // namespace kelvara::cli
