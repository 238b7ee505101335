#pragma once

#include "cli/Command.h"
#include "platform/FileSystem.h"
#include "services/CopyService.h"

#include <string>

namespace kelvara::cli {

/// `kelvara-cli copy`: copies all media files of a folder as the window copies the marked ones.
class CopyCommand : public Command {
public:
    /// Adds the subcommand to `app`; both outlive it.
    CopyCommand(CLI::App& app, FileSystem& files);

    ExitCode run() const override;

private:
    void print(const std::vector<CopyService::Plan>& plans, const CopyService::Report& report) const;
    void printAsJSON(const std::vector<CopyService::Plan>& plans, const CopyService::Report& report) const;

    FileSystem& m_files;
    std::string m_folder;
    std::string m_destination;
    bool m_intoDateFolders = false;
    bool m_verifies = false;
    bool m_isDryRun = false;
};

} // namespace kelvara::cli
