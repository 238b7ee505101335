#pragma once

#include "cli/Command.h"
#include "platform/FileSystem.h"
#include "platform/Trash.h"

#include <string>
#include <vector>

namespace kelvara::cli {

/// `kelvara-cli delete`: moves photos to the Trash or erases them, with the sidecars that no other file
/// needs.
class DeleteCommand : public Command {
public:
    /// Everything outlives it.
    DeleteCommand(CLI::App& app, FileSystem& files, Trash& trash);

    ExitCode run() const override;

private:
    struct Refusal {
        FileURL file;
        std::string reason;
    };
    /// What the arguments ask for.
    struct Request {
        std::vector<FileURL> targets;
        std::vector<FileURL> sidecars;
        std::vector<Refusal> refusals;
    };
    struct Outcome {
        std::vector<FileURL> deleted;
        std::vector<FileURL> sidecars;
        std::vector<Refusal> failures;
        bool wasCancelled = false;
    };
    [[nodiscard]] Request read() const;
    [[nodiscard]] Outcome perform(const Request& request) const;
    void print(const Outcome& outcome) const;
    void printAsJSON(const Outcome& outcome) const;

    FileSystem& m_files;
    Trash& m_trash;
    std::vector<std::string> m_paths;
    bool m_isPermanent = false;
    bool m_withPairs = false;
    bool m_isDryRun = false;
};

} // namespace kelvara::cli
