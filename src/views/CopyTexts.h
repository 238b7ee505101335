#pragma once

#include "services/CopyService.h"

#include <QList>
#include <QString>

#include <chrono>

namespace kelvara {

class LibraryViewModel;

/// The copy button's words. `destination` is empty while none is known.
struct CopyButtonTexts {
    QString title;
    QString help;
};
[[nodiscard]] CopyButtonTexts copyButtonTexts(std::int64_t markedCount, const FileURL& destination);

/// Minutes and seconds without zeros and fractions: "2 min, 5 sec", "3 min", "0 sec".
[[nodiscard]] QString durationText(std::chrono::nanoseconds duration);

/// "48.2 MB/s · 2 min, 5 sec left"; empty for the first two seconds and until the first byte.
[[nodiscard]] QString timeRemainingText(const CopyService::Progress& progress,
                                        std::chrono::nanoseconds elapsed);

/// The heading of a finished copy; an interruption says more than any count.
[[nodiscard]] QString copyReportTitle(const CopyService::Report& report, bool wasInterrupted);

/// What the words of a copy are about.
enum class CopyKind { copy, verifiedCopy, exported };
/// Of the running or last one.
[[nodiscard]] CopyKind copyKind(const LibraryViewModel& library);

/// "Copying 3 of 12".
[[nodiscard]] QString copyProgressTitle(const CopyService::Progress& progress, CopyKind kind);

/// One line of the report: "12 copied" or "12 exported", "340 MB in 8 sec", "… · verified".
struct CopyReportRow {
    enum class Kind { copied, skipped, renamed, failed };
    Kind kind = Kind::copied;
    QString count;
    QString detail;
};
[[nodiscard]] QList<CopyReportRow> copyReportRows(const CopyService::Report& report, CopyKind kind);

} // namespace kelvara
