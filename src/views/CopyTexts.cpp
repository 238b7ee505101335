#include "views/CopyTexts.h"

#include "library/LibraryViewModel.h"
#include "text/ByteCount.h"
#include "views/Text.h"

#include <QCoreApplication>

#include <algorithm>

namespace kelvara {

namespace {
struct CopyTexts {
    Q_DECLARE_TR_FUNCTIONS(CopyTexts)
};
QString tr(const char* source) { return CopyTexts::tr(source); }
} // namespace

CopyButtonTexts copyButtonTexts(std::int64_t markedCount, const FileURL& destination) {
    if (destination.isEmpty()) {
        return {tr("Copy %1 marked…  ⌘⏎").arg(countText(markedCount)),
                tr("Choose a folder and copy marked files (⌘Return)")};
    }
    // Several arguments at once: a folder's name may contain "%1" itself.
    return {tr("Copy %1 to %2").arg(countText(markedCount), nameText(destination)),
            tr("Copy marked files to %1").arg(pathText(destination))};
}

QString durationText(std::chrono::nanoseconds duration) {
    const auto total = std::chrono::floor<std::chrono::seconds>(duration).count();
    const auto minutes = total / 60;
    const auto seconds = total % 60;
    if (minutes == 0) return tr("%1 sec").arg(seconds);
    if (seconds == 0) return tr("%1 min").arg(minutes);
    return tr("%1 min, %2 sec").arg(minutes).arg(seconds);
}

QString timeRemainingText(const CopyService::Progress& progress, std::chrono::nanoseconds elapsed) {
    const auto seconds = std::chrono::duration<double>(elapsed).count();
    if (progress.completedBytes < 1 || seconds <= 2.0) return {};
    const auto rate = static_cast<double>(progress.completedBytes) / seconds;
    // Sizes that a broken card claims would take more years than a duration holds.
    const auto remaining =
        std::min(static_cast<double>(progress.totalBytes - progress.completedBytes) / rate, 1e9);
    const auto duration =
        std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::duration<double>(remaining));
    return tr("%1/s · %2 left")
        .arg(text(byteCountText(static_cast<std::int64_t>(rate))), durationText(duration));
}

QString copyReportTitle(const CopyService::Report& report, bool wasInterrupted) {
    if (wasInterrupted) return tr("Copy Interrupted");
    if (report.wasCancelled) return tr("Copy Cancelled");
    if (!report.failures.empty()) return tr("Copy Finished with Errors");
    return tr("Copy Complete");
}

CopyKind copyKind(const LibraryViewModel& library) {
    if (library.copyExport()) return CopyKind::exported;
    return library.isCopyVerified() ? CopyKind::verifiedCopy : CopyKind::copy;
}

QString copyProgressTitle(const CopyService::Progress& progress, CopyKind kind) {
    return (kind == CopyKind::exported ? tr("Exporting %1 of %2") : tr("Copying %1 of %2"))
        .arg(countText(progress.completedFiles), countText(progress.totalFiles));
}

QList<CopyReportRow> copyReportRows(const CopyService::Report& report, CopyKind kind) {
    using Kind = CopyReportRow::Kind;
    QList<CopyReportRow> rows;
    const auto isVerified = kind == CopyKind::verifiedCopy && report.copied > 0;
    const auto detail = isVerified ? tr("%1 in %2 · verified") : tr("%1 in %2");
    const auto count = kind == CopyKind::exported ? tr("%1 exported") : tr("%1 copied");
    rows.append({Kind::copied, count.arg(countText(report.copied)),
                 detail.arg(text(byteCountText(report.copiedBytes)), durationText(report.duration))});
    if (report.skipped >= 1) {
        rows.append({Kind::skipped, tr("%1 already there").arg(countText(report.skipped)),
                     tr("skipped (same name and size)")});
    }
    if (report.renamed >= 1) {
        rows.append({Kind::renamed, tr("%1 renamed").arg(countText(report.renamed)),
                     tr("a different file had the same name")});
    }
    if (!report.failures.empty()) {
        const auto failed = countText(static_cast<std::int64_t>(report.failures.size()));
        rows.append({Kind::failed, tr("%1 failed").arg(failed), {}});
    }
    return rows;
}

} // namespace kelvara
