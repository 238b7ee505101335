#include "cli/CopyCommand.h"

#include "cli/CopyProgress.h"
#include "cli/InterruptWatch.h"
#include "cli/MediaFolder.h"
#include "library/ItemOrder.h"
#include "library/LibraryIndex.h"
#include "text/ByteCount.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <fmt/format.h>
#include <unistd.h>

namespace kelvara::cli {

namespace {

using Plan = CopyService::Plan;

bool isSkipped(const Plan& plan) { return std::holds_alternative<Plan::SkipExisting>(plan.action); }

/// One line that is written over and over while files are copied, where somebody watches.
class ProgressLine {
public:
    ~ProgressLine() {
        if (m_isShown) fmt::print(stderr, "\r\033[K");
    }
    void show(const CopyService::Progress& progress) {
        if (!m_isWatched) return;
        m_isShown = true;
        fmt::print(stderr, "\r\033[K{}", m_progress.line(progress, std::chrono::steady_clock::now()));
    }

private:
    const bool m_isWatched = ::isatty(STDERR_FILENO) == 1;
    bool m_isShown = false;
    CopyProgress m_progress;
};

/// The items in the order in which the window lists them at first; copies get their numbers in it.
std::vector<PhotoItem> byCaptureDate(const std::vector<PhotoItem>& items) {
    std::vector<PhotoItem> ordered;
    ordered.reserve(items.size());
    for (const auto position : sorted({items, {}}, items.size(), SortOrder::captureDate, true)) {
        ordered.push_back(items[position]);
    }
    return ordered;
}

/// What a run would report if all went well.
CopyService::Report expectedReport(const std::vector<Plan>& plans, const FileURL& destination) {
    CopyService::Report report;
    report.destination = destination;
    for (const auto& plan : plans) {
        if (isSkipped(plan)) {
            ++report.skipped;
            continue;
        }
        ++report.copied;
        report.copiedBytes += plan.size;
        if (plan.destination.stem() != plan.source.stem()) ++report.renamed;
    }
    return report;
}

} // namespace

CopyCommand::CopyCommand(CLI::App& app, FileSystem& files)
    : Command{app, "copy", "Copy the photos and videos below a folder"}, m_files{files} {
    m_command->add_option("FOLDER", m_folder, "A memory card or any other folder")->required();
    m_command->add_option("DESTINATION", m_destination, "Where the copies go; made when missing")->required();
    m_command->add_flag("--date-folders", m_intoDateFolders, "Sort the copies into folders like 2024-03-07");
    m_command->add_flag("--verify", m_verifies, "Read each copy back and compare it with the original");
    m_command->add_flag("--dry-run", m_isDryRun, "Only tell what would be copied");
}

ExitCode CopyCommand::run() const {
    const auto folder = resolved(m_folder);
    if (!folder) return printError(folder.error().text), folder.error().code;
    const auto destination = resolved(m_destination);
    if (!destination) return printError(destination.error().text), destination.error().code;

    const InterruptWatch interrupt;
    const auto items = mediaFiles(m_files, *folder, interrupt.token());
    if (!items) return printError(items.error().text), items.error().code;

    const CopyService service{m_files, {}}; // ratings of a session, which sidecars are written for, are none
    const auto plans = service.plan({.items = byCaptureDate(*items),
                                     .destination = *destination,
                                     .source = *folder,
                                     .intoDateFolders = m_intoDateFolders,
                                     .createsFolders = !m_isDryRun,
                                     .verifies = m_verifies},
                                    interrupt.token());
    if (!plans) {
        printError(printable(message(plans.error())));
        const bool wasCancelled = std::holds_alternative<CopyService::Cancelled>(plans.error());
        return wasCancelled ? ExitCode::interrupted : ExitCode::failure;
    }

    auto report = expectedReport(*plans, *destination);
    if (!m_isDryRun) {
        ProgressLine line;
        report = service.copy(*plans, *destination, {}, interrupt.token(),
                              [&](const auto& progress) { line.show(progress); });
    }
    m_asJSON ? printAsJSON(*plans, report) : print(*plans, report);
    if (report.wasCancelled) return ExitCode::interrupted;
    return report.failures.empty() ? ExitCode::success : ExitCode::failure;
}

void CopyCommand::print(const std::vector<Plan>& plans, const CopyService::Report& report) const {
    if (m_isDryRun) {
        for (const auto& plan : plans) {
            printText(fmt::format("{}  {} -> {}\n", isSkipped(plan) ? "skip" : "copy",
                                  printable(plan.source.path()), printable(plan.destination.path())));
        }
    }
    for (const auto& failure : report.failures) {
        printError(fmt::format("{}: {}", printable(failure.source.path()), failure.reason));
    }
    const auto bytes = byteCountText(report.copiedBytes);
    if (m_isDryRun) {
        printText(fmt::format("{} to copy ({}), {} already there, {} to be renamed\n", report.copied, bytes,
                              report.skipped, report.renamed));
        return;
    }
    const double seconds = std::chrono::duration<double>{report.duration}.count();
    printText(fmt::format("{}{} copied ({} in {:.1f} s), {} already there, {} renamed, {} failed\n",
                          report.wasCancelled ? "Cancelled: " : "", report.copied, bytes, seconds,
                          report.skipped, report.renamed, report.failures.size()));
}

void CopyCommand::printAsJSON(const std::vector<Plan>& plans, const CopyService::Report& report) const {
    JSON json;
    setPath(json, "destination", "destinationURL", report.destination);
    json["dryRun"] = m_isDryRun;
    json["cancelled"] = report.wasCancelled;
    json["copied"] = report.copied;
    json["skipped"] = report.skipped;
    json["renamed"] = report.renamed;
    json["failed"] = report.failures.size();
    json["copiedBytes"] = report.copiedBytes;
    json["seconds"] = std::chrono::duration<double>{report.duration}.count();
    auto& files = json["files"] = JSON::array();
    for (const auto& plan : plans) {
        JSON entry;
        setPath(entry, "source", "sourceURL", plan.source);
        setPath(entry, "destination", "destinationURL", plan.destination);
        entry["size"] = plan.size;
        entry["action"] = isSkipped(plan) ? "skip" : "copy";
        files.push_back(std::move(entry));
    }
    auto& failures = json["failures"] = JSON::array();
    for (const auto& failure : report.failures) {
        JSON entry;
        setPath(entry, "source", "sourceURL", failure.source);
        entry["reason"] = failure.reason;
        failures.push_back(std::move(entry));
    }
    printJSON(json);
}

} // namespace kelvara::cli
