#pragma once

#include "services/CopyService.h"

#include <algorithm>
#include <string>
#include <variant>

namespace kelvara {

/// What the copy sheet shows.
struct CopyIdle {
    friend bool operator==(const CopyIdle&, const CopyIdle&) = default;
};
struct CopyFailed {
    std::string message;
    friend bool operator==(const CopyFailed&, const CopyFailed&) = default;
};
/// How much of a copy is done, 0 to 1: by bytes, or by files where all are empty.
[[nodiscard]] inline double completedShare(const CopyService::Progress& progress) {
    const bool hasBytes = progress.totalBytes > 0;
    const auto completed = static_cast<double>(hasBytes ? progress.completedBytes : progress.completedFiles);
    const auto total = static_cast<double>(hasBytes ? progress.totalBytes : progress.totalFiles);
    return total > 0 ? std::clamp(completed / total, 0.0, 1.0) : 0.0;
}

/// The user is choosing how photos are exported.
struct ConfiguringExport {
    friend bool operator==(const ConfiguringExport&, const ConfiguringExport&) = default;
};

using CopyState =
    std::variant<CopyIdle, CopyService::Progress, CopyService::Report, CopyFailed, ConfiguringExport>;

} // namespace kelvara
