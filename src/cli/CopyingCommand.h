#pragma once

#include "cli/Command.h"
#include "cli/MediaFolder.h"
#include "platform/FileSystem.h"
#include "services/CopyService.h"

#include <string>
#include <vector>

namespace kelvara::cli {

/// A command that brings all media files of a folder into another, as the window does with the marked ones:
/// as they are, or as pictures made of them.
class CopyingCommand : public Command {
public:
    ExitCode run() const final;

protected:
    /// Adds the subcommand to `app`, with its folders and what both kinds take; `files` outlives it too.
    CopyingCommand(CLI::App& app, const std::string& name, const std::string& description, FileSystem& files);

    /// What is asked for beside the photos and the folders.
    virtual Result<void, CommandError> complete(CopyService::PlanRequest& request) const = 0;
    /// The stars that go along.
    [[nodiscard]] virtual CopyService::Ratings ratings(const std::vector<PhotoItem>& items,
                                                       const std::stop_token& stop) const = 0;

    /// As it stands on the command line.
    [[nodiscard]] const std::string& givenFolder() const { return m_folder; }

    FileSystem& m_files;

private:
    struct Job;

    void print(const Job& job) const;
    void printAsJSON(const Job& job) const;

    std::string m_folder;
    std::string m_destination;
    bool m_intoDateFolders = false;
    bool m_isDryRun = false;
};

} // namespace kelvara::cli
