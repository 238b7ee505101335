#include "cli/CopyingCommand.h"

#include "cli/CopyProgress.h"
#include "cli/InterruptWatch.h"
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
bool isCopied(const Plan& plan) { return std::holds_alternative<Plan::Copy>(plan.action); }

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
        if (isCopied(plan)) report.copiedBytes += plan.size; // what a picture takes isn't known yet
        if (plan.destination.stem() != plan.source.stem()) ++report.renamed;
    }
    return report;
}

} // namespace

struct CopyingCommand::Job {
    const std::vector<Plan>& plans;
    const CopyService::Report& report;
    const std::optional<CopyService::Export>& exportAs;

    /// What is done with one of its files: "copy".
    [[nodiscard]] const char* action(const Plan& plan) const {
        return isSkipped(plan) ? "skip" : exportAs ? "export" : "copy";
    }
    /// What became of those that went well.
    [[nodiscard]] std::string done() const { return exportAs ? "exported" : "copied"; }
    /// " as JPEG with Warm applied"
    [[nodiscard]] std::string form() const { return exportAs ? " as " + exportAs->title() : std::string{}; }
};

CopyingCommand::CopyingCommand(CLI::App& app, const std::string& name, const std::string& description,
                               FileSystem& files)
    : Command{app, name, description}, m_files{files} {
    m_command->add_option("FOLDER", m_folder, "A memory card or any other folder")->required();
    m_command->add_option("DESTINATION", m_destination, "Where the files go; made when missing")->required();
    m_command->add_flag("--date-folders", m_intoDateFolders, "Sort the files into folders like 2024-03-07");
    m_command->add_flag("--dry-run", m_isDryRun, "Only tell what would be done");
}

ExitCode CopyingCommand::run() const {
    const auto folder = resolved(m_folder);
    if (!folder) return fail(folder.error());
    const auto destination = resolved(m_destination);
    if (!destination) return fail(destination.error());
    CopyService::PlanRequest request{.items = {},
                                     .destination = *destination,
                                     .source = *folder,
                                     .intoDateFolders = m_intoDateFolders,
                                     .createsFolders = !m_isDryRun};
    if (const auto completed = complete(request); !completed) return fail(completed.error());

    const InterruptWatch interrupt;
    const auto& stop = interrupt.token();
    const auto items = mediaFiles(m_files, *folder, stop);
    if (!items) return fail(items.error());
    request.items = byCaptureDate(*items);

    const CopyService service{m_files, {}}; // ratings of a session, which sidecars are written for, are none
    const auto plans = service.plan(request, stop);
    if (!plans) {
        const bool wasCancelled = std::holds_alternative<CopyService::Cancelled>(plans.error());
        return fail(
            {printable(message(plans.error())), wasCancelled ? ExitCode::interrupted : ExitCode::failure});
    }
    auto report = expectedReport(*plans, *destination);
    if (!m_isDryRun) {
        ProgressLine line;
        report = service.copy(*plans, *destination, ratings(*items, stop), stop,
                              [&](const auto& progress) { line.show(progress); });
    }
    const Job job{*plans, report, request.exportAs};
    m_asJSON ? printAsJSON(job) : print(job);
    if (report.wasCancelled) return ExitCode::interrupted;
    return report.failures.empty() ? ExitCode::success : ExitCode::failure;
}

void CopyingCommand::print(const Job& job) const {
    const auto& report = job.report;
    for (const auto& plan : job.plans) {
        if (!m_isDryRun) break;
        printText(fmt::format("{}  {} -> {}\n", job.action(plan), printable(plan.source.path()),
                              printable(plan.destination.path())));
    }
    for (const auto& failure : report.failures) {
        printError(fmt::format("{}: {}", printable(failure.source.path()), printable(failure.reason)));
    }
    const auto bytes = byteCountText(report.copiedBytes);
    const auto there = job.exportAs ? std::string{} : fmt::format(", {} already there", report.skipped);
    if (m_isDryRun) {
        const auto what = job.exportAs ? "export" + job.form() : fmt::format("copy ({})", bytes);
        printText(fmt::format("{} to {}{}, {} to be renamed\n", report.copied, what, there, report.renamed));
        return;
    }
    const double seconds = std::chrono::duration<double>{report.duration}.count();
    printText(fmt::format("{}{} {}{} ({} in {:.1f} s){}, {} renamed, {} failed\n",
                          report.wasCancelled ? "Cancelled: " : "", report.copied, job.done(), job.form(),
                          bytes, seconds, there, report.renamed, report.failures.size()));
}

void CopyingCommand::printAsJSON(const Job& job) const {
    const auto& report = job.report;
    JSON json;
    setPath(json, "destination", "destinationURL", report.destination);
    json["dryRun"] = m_isDryRun;
    json["cancelled"] = report.wasCancelled;
    json[job.done()] = report.copied;
    json["skipped"] = report.skipped;
    json["renamed"] = report.renamed;
    json["failed"] = report.failures.size();
    json[job.done() + "Bytes"] = report.copiedBytes;
    json["seconds"] = std::chrono::duration<double>{report.duration}.count();
    auto& files = json["files"] = JSON::array();
    for (const auto& plan : job.plans) {
        JSON entry;
        setPath(entry, "source", "sourceURL", plan.source);
        setPath(entry, "destination", "destinationURL", plan.destination);
        entry["size"] = plan.size;
        entry["action"] = job.action(plan);
        files.push_back(std::move(entry));
    }
    auto& failures = json["failures"] = JSON::array();
    for (const auto& failure : report.failures) {
        JSON entry;
        setPath(entry, "source", "sourceURL", failure.source);
        entry["reason"] = printable(failure.reason); // may hold a name of any bytes
        failures.push_back(std::move(entry));
    }
    printJSON(json);
}

} // namespace kelvara::cli
