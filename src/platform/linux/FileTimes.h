#pragma once

#include "platform/FileSystem.h"

#include <sys/stat.h>

namespace kelvara {

/// Fields that `fileStatus` reads; the mask for statx.
inline constexpr unsigned statusFields = STATX_TYPE | STATX_SIZE | STATX_MTIME | STATX_BTIME;

[[nodiscard]] FileStatus fileStatus(const struct statx& values);

} // namespace kelvara
