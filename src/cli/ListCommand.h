#pragma once

#include "cli/Command.h"
#include "platform/FileSystem.h"

#include <string>
#include <vector>

namespace kelvara::cli {

/// `kelvara-cli list`: the media files of a folder, ordered and filtered as the window does it.
class ListCommand : public Command {
public:
    /// Adds the subcommand to `app`; both outlive it.
    ListCommand(CLI::App& app, FileSystem& files);

    ExitCode run() const override;

private:
    FileSystem& m_files;
    std::string m_folder;
    std::string m_order = "captureDate";
    bool m_descending = false;
    std::string m_searchText;
    std::vector<std::string> m_hiddenExtensions;
};

} // namespace kelvara::cli
