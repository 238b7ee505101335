#pragma once

#include "cli/MediaFolder.h"

#include <string>

namespace kelvara::cli {

/// Where light edits are kept: in the file that a path on the command line names, or where the window keeps
/// them for an empty path.
[[nodiscard]] Result<FileURL, CommandError> editFile(const std::string& path);

} // namespace kelvara::cli
