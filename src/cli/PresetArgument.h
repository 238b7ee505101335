#pragma once

#include "cli/MediaFolder.h"
#include "presets/DevelopPreset.h"

#include <string>

namespace kelvara::cli {

/// The develop preset in the file that a path on the command line names.
[[nodiscard]] Result<DevelopPreset, CommandError> loadedPreset(const std::string& path);

} // namespace kelvara::cli
