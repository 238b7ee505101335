#pragma once

#include "cli/Command.h"
#include "cli/PresetArgument.h"
#include "platform/FileSystem.h"

namespace kelvara::cli {

/// `kelvara-cli look`: what a develop preset makes of colours.
class LookCommand : public Command {
public:
    /// Both outlive it.
    LookCommand(CLI::App& app, const FileSystem& files);
    [[nodiscard]] ExitCode run() const override;

private:
    const FileSystem& m_files;
    PresetArgument m_preset;
    std::string m_colors;
};

} // namespace kelvara::cli
