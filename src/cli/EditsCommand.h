#pragma once

#include "cli/Command.h"
#include "cli/LightArgument.h"
#include "platform/FileSystem.h"

#include <string>
#include <vector>

namespace kelvara::cli {

/// `kelvara-cli edits`: shows and changes photos' light edits where the window keeps them.
class EditsCommand : public Command {
public:
    /// Both outlive it.
    EditsCommand(CLI::App& app, FileSystem& files);
    [[nodiscard]] ExitCode run() const override;

private:
    FileSystem& m_files;
    std::vector<std::string> m_photos;
    LightArgument m_light;
    bool m_resets = false;
    std::string m_editFile; ///< Empty for the window's own.
};

} // namespace kelvara::cli
