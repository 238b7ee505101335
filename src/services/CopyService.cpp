#include "services/CopyService.h"

#include "services/CopyNames.h"
#include "text/Localized.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <fmt/format.h>
#include <iterator>
#include <limits>
#include <mutex>
#include <thread>

namespace kelvara {

/// The plans of one `copy` on their way through its threads. The threads take plans and give outcomes; the
/// report is the calling thread's alone.
class CopyService::Run {
public:
    struct Finished {
        const Plan& plan;
        Outcome outcome;
    };

    Run(const CopyService& service, const std::vector<Plan>& plans, const Ratings& ratings,
        const std::stop_token& stop)
        : m_service{service}, m_plans{plans}, m_ratings{ratings}, m_stop{stop}, m_running{
                                                                                    std::min(maximumInFlight,
                                                                                             plans.size())} {
        for (std::size_t i = 0, count = m_running; i < count; ++i) m_threads.emplace_back([this] { work(); });
    }

    /// Waits for the next file to finish; empty when there will be none.
    std::optional<Finished> next() {
        std::unique_lock lock{m_mutex};
        m_changed.wait(lock, [this] { return !m_finished.empty() || m_running == 0; });
        if (m_finished.empty()) return std::nullopt;
        auto finished = std::move(m_finished.front());
        m_finished.pop_front();
        return finished;
    }

private:
    void work() {
        std::unique_lock lock{m_mutex};
        while (m_begun < m_plans.size() && !m_stop.stop_requested()) {
            const auto& plan = m_plans[m_begun++];
            lock.unlock();
            const auto rating = m_ratings.find(plan.source);
            auto outcome = m_service.perform(plan, rating == m_ratings.end() ? std::nullopt
                                                                             : std::optional{rating->second});
            lock.lock();
            m_finished.push_back({plan, std::move(outcome)});
            m_changed.notify_one();
        }
        --m_running;
        m_changed.notify_one();
    }

    const CopyService& m_service;
    const std::vector<Plan>& m_plans;
    const Ratings& m_ratings;
    const std::stop_token& m_stop;
    std::mutex m_mutex; // guards all below but the threads
    std::condition_variable m_changed;
    std::size_t m_begun = 0;
    std::size_t m_running = 0;
    std::deque<Finished> m_finished;
    std::vector<std::jthread> m_threads; // last: they end before what they use
};

namespace {

/// Adds sizes, none of which can be trusted to make sense.
std::int64_t saturatingSum(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    return __builtin_add_overflow(a, b, &sum) ? std::numeric_limits<std::int64_t>::max() : sum;
}

} // namespace

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
    while (auto finished = run.next()) {
        const auto& plan = finished->plan;
        if (const auto* copied = std::get_if<Copied>(&finished->outcome)) {
            ++report.copied;
            report.copiedBytes = saturatingSum(report.copiedBytes, copied->bytes);
            if (plan.destination.stem() != plan.source.stem()) ++report.renamed;
        } else if (auto* failed = std::get_if<Failed>(&finished->outcome)) {
            report.failures.push_back(
                {std::string{plan.source.name()}, std::move(failed->reason), plan.source});
        } else {
            ++report.skipped;
        }
        ++progress.completedFiles;
        progress.completedBytes = saturatingSum(progress.completedBytes, plan.size);
        progress.currentFile = std::string{plan.source.name()};
        onProgress(progress);
    }
    report.wasCancelled = stop.stop_requested() && progress.completedFiles < progress.totalFiles;
    report.duration = std::chrono::steady_clock::now() - start;
    return report;
}

CopyService::Outcome CopyService::perform(const Plan& plan, std::optional<Rating> rating) const {
    const bool isCopied = std::holds_alternative<Plan::Copy>(plan.action);
    if (isCopied) {
        if (const auto copied = copyIntoPlace(plan); !copied)
            return Failed{failureReason(copied.error(), plan)};
    }
    // A skipped file's sidecar is carried along too: the earlier copy may have been made without one.
    if (const auto sidecar = copySidecar(plan, rating); !sidecar) return Failed{sidecar.error()};
    if (isCopied) return Copied{plan.size};
    return Skipped{};
}

Result<void, CopyService::CopyError> CopyService::copyIntoPlace(const Plan& plan) const {
    const auto temporary = temporaryURL(plan.destination);
    (void)m_files.removeFile(temporary); // left by a copy that was cut off
    // Files in progress finish when the job is cancelled, so that none is copied half for nothing.
    if (const auto copied = m_files.copyFile(plan.source, temporary, {}); !copied) {
        // One that appeared in between belongs to somebody else.
        if (copied.error().code != std::errc::file_exists) (void)m_files.removeFile(temporary);
        return Failure{CopyError{copied.error()}};
    }
    const auto written = m_files.status(temporary);
    if (!written || written->size != plan.size) {
        (void)m_files.removeFile(temporary);
        return Failure{CopyError{SizeMismatch{}}};
    }
    if (const auto moved = m_files.moveFile(temporary, plan.destination); !moved) {
        (void)m_files.removeFile(temporary);
        return Failure{CopyError{moved.error()}};
    }
    return {};
}

Result<void, std::string> CopyService::copySidecar(const Plan& plan, std::optional<Rating> rating) const {
    if (!plan.isRaw) return {};
    const auto sidecar = plan.destination.stemKey();
    if (m_files.status(sidecar)) return {}; // what is there stays
    if (!plan.sourceSidecar) {
        if (!rating || *rating == Rating{} || !m_writeSidecar) return {};
        return m_writeSidecar(sidecar, *rating);
    }

    // Two RAW files of one shot carry the same sidecar, perhaps at the same moment: each by a temporary file
    // of its own. The sidecar may have been rewritten since the plan was made, so no size is expected of it.
    const auto temporary = temporaryURL(plan.destination.appendingExtension("xmp"));
    (void)m_files.removeFile(temporary);
    auto placed = m_files.copyFile(*plan.sourceSidecar, temporary, {});
    if (placed) placed = m_files.moveFile(temporary, sidecar);
    if (placed) return {};
    (void)m_files.removeFile(temporary);
    if (placed.error().code == std::errc::file_exists) return {}; // the other one was faster
    return Failure{fmt::format(fmt::runtime(localized("The rating sidecar couldn't be copied: {}.")),
                               localized(placed.error().code.message()))};
}

} // namespace kelvara
