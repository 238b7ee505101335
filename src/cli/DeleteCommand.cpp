#include "cli/DeleteCommand.h"

#include "cli/InterruptWatch.h"
#include "cli/MediaFolder.h"
#include "library/FileRemoval.h"
#include "text/Localized.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <unordered_set>

namespace kelvara::cli {

DeleteCommand::DeleteCommand(CLI::App& app, FileSystem& files, Trash& trash)
    : Command{app, "delete", "Move photos and videos to the Trash"}, m_files{files}, m_trash{trash} {
    m_command->add_option("FILES", m_paths, "Photos or videos")->required();
    m_command->add_flag("--permanently", m_isPermanent, "Erase them instead");
    m_command->add_flag("--with-pairs", m_withPairs, "Also the other files of the same folder and name");
    m_command->add_flag("--dry-run", m_isDryRun, "Only tell what would be deleted");
}

DeleteCommand::Request DeleteCommand::read() const {
    Request request;
    std::unordered_set<FileURL> going;
    std::map<FileURL, Result<std::vector<PhotoItem>, CommandError>> folders;
    const auto refuse = [&](const FileURL& file, std::string reason) {
        request.refusals.push_back({file, std::move(reason)});
    };
    for (const auto& path : m_paths) {
        const auto file = resolvedLink(path);
        if (!file) {
            refuse(FileURL{path}, file.error().text);
            continue;
        }
        if (!going.insert(*file).second) continue; // named twice
        const auto status = m_files.status(*file);
        const bool isMedia = status && status->kind == FileStatus::Kind::file && mediaKind(file->extension());
        if (!isMedia) {
            refuse(*file, status ? "It isn't a photo or video." : localized(status.error().code.message()));
            continue;
        }
        // Unless it is known what lies beside the file, nothing can be said of its sidecar.
        const auto folder = file->parent();
        auto listed = folders.find(folder);
        if (listed == folders.end()) listed = folders.emplace(folder, mediaFilesIn(folder)).first;
        const auto isListed = [&](const auto& items) {
            return std::any_of(items.begin(), items.end(),
                               [&](const auto& item) { return item.url == *file; });
        };
        if (!listed->second) {
            refuse(*file, listed->second.error().text);
        } else if (!isListed(*listed->second)) { // found in any case, its sidecar would seem to be nobody's
            refuse(*file, "Its name is written in other letters.");
        } else {
            request.targets.push_back(*file);
        }
    }

    std::vector<PhotoItem> beside;
    for (const auto& [folder, items] : folders) {
        if (items) beside.insert(beside.end(), items->begin(), items->end());
    }
    if (m_withPairs) {
        std::unordered_set<FileURL> shots;
        for (const auto& target : request.targets) shots.insert(target.stemKey());
        for (const auto& item : beside) {
            if (shots.contains(item.url.stemKey()) && going.insert(item.url).second) {
                request.targets.push_back(item.url);
            }
        }
    }
    request.sidecars = orphanedSidecars(request.targets, beside);
    std::sort(request.sidecars.begin(), request.sidecars.end());
    std::erase_if(request.sidecars, [this](const FileURL& sidecar) { return !m_files.status(sidecar); });
    return request;
}

DeleteCommand::Outcome DeleteCommand::perform(const Request& request) const {
    if (m_isDryRun) return {request.targets, request.sidecars, request.refusals};
    const InterruptWatch interrupt;
    const auto removal =
        removeFiles(m_files, m_trash, request.targets, request.sidecars, m_isPermanent, interrupt.token());
    Outcome outcome{removal.removed, removal.removedSidecars, request.refusals};
    for (const auto& failure : removal.failures) {
        outcome.failures.push_back({failure.url, localized(failure.code.message())});
    }
    outcome.wasCancelled = removal.removed.size() + removal.failures.size() < request.targets.size();
    return outcome;
}

ExitCode DeleteCommand::run() const {
    const auto outcome = perform(read());
    m_asJSON ? printAsJSON(outcome) : print(outcome);
    if (outcome.wasCancelled) return ExitCode::interrupted;
    return outcome.failures.empty() ? ExitCode::success : ExitCode::failure;
}

void DeleteCommand::print(const Outcome& outcome) const {
    if (m_isDryRun) {
        for (const auto* files : {&outcome.deleted, &outcome.sidecars}) {
            for (const auto& file : *files) {
                printText(fmt::format("{}  {}\n", m_isPermanent ? "erase" : "trash", printable(file.path())));
            }
        }
    }
    for (const auto& failure : outcome.failures) {
        printError(fmt::format("{}: {}", printable(failure.file.path()), printable(failure.reason)));
    }
    const auto* what = m_isPermanent ? "erased" : "moved to the Trash";
    printText(fmt::format("{}{} {}{}, sidecars with them: {}, failed: {}\n",
                          outcome.wasCancelled ? "Cancelled: " : "", outcome.deleted.size(),
                          m_isDryRun ? "to be " : "", what, outcome.sidecars.size(),
                          outcome.failures.size()));
}

void DeleteCommand::printAsJSON(const Outcome& outcome) const {
    JSON json;
    json["dryRun"] = m_isDryRun;
    json["permanently"] = m_isPermanent;
    json["cancelled"] = outcome.wasCancelled;
    json["deleted"] = outcome.deleted.size();
    json["failed"] = outcome.failures.size();
    const auto list = [&json](const char* key, const std::vector<FileURL>& files) {
        auto& entries = json[key] = JSON::array();
        for (const auto& file : files) {
            JSON entry;
            setPath(entry, "path", "url", file);
            entries.push_back(std::move(entry));
        }
    };
    list("files", outcome.deleted);
    list("sidecars", outcome.sidecars);
    auto& failures = json["failures"] = JSON::array();
    for (const auto& failure : outcome.failures) {
        JSON entry;
        setPath(entry, "path", "url", failure.file);
        entry["reason"] = failure.reason;
        failures.push_back(std::move(entry));
    }
    printJSON(json);
}

} // namespace kelvara::cli
