#include "services/CopyService.h"

#include "services/CopyRun.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace kelvara {

std::int64_t CopyService::saturatingSum(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    return __builtin_add_overflow(a, b, &sum) ? std::numeric_limits<std::int64_t>::max() : sum;
}

void CopyService::add(const Finished& finished, Report& report) {
    const auto& plan = finished.plan;
    if (const auto* copied = std::get_if<Copied>(&finished.outcome)) {
        ++report.copied;
        report.copiedBytes = saturatingSum(report.copiedBytes, copied->bytes);
        if (plan.destination.stem() != plan.source.stem()) ++report.renamed;
    } else if (const auto* failed = std::get_if<Failed>(&finished.outcome)) {
        report.failures.push_back({std::string{plan.source.name()}, failed->reason, plan.source});
    } else {
        ++report.skipped;
    }
}

CopyService::Report CopyService::copy(const std::vector<Plan>& plans, const FileURL& destination,
                                      const Ratings& ratings, const std::stop_token& stop,
                                      const ProgressHandler& onProgress) const {
    const auto start = std::chrono::steady_clock::now();
    Report report;
    report.destination = destination;
    Progress progress;
    progress.totalFiles = std::ssize(plans);
    for (const auto& plan : plans) progress.totalBytes = saturatingSum(progress.totalBytes, plan.size);
    onProgress(progress);

    Run run{*this, plans, ratings, stop};
    std::vector<const Plan*> exported;
    while (const auto finished = run.next()) {
        const auto& plan = finished->plan;
        add(*finished, report);
        if (std::holds_alternative<Plan::Render>(plan.action) &&
            std::holds_alternative<Copied>(finished->outcome)) {
            exported.push_back(&plan);
        }
        ++progress.completedFiles;
        progress.completedBytes = saturatingSum(progress.completedBytes, plan.size);
        progress.currentFile = std::string{plan.source.name()};
        onProgress(progress);
    }
    std::ranges::sort(exported); // all of one vector
    for (const auto* plan : exported) report.exported.push_back(plan->destination);
    report.wasCancelled = stop.stop_requested() && progress.completedFiles < progress.totalFiles;
    report.duration = std::chrono::steady_clock::now() - start;
    return report;
}

} // namespace kelvara
