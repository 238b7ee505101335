#pragma once

#include "model/ExportSettings.h"

#include <QString>

#include <cstddef>
#include <optional>

namespace kelvara {

/// "Export 12 Photos".
[[nodiscard]] QString exportTitle(std::size_t count);

/// What files of these settings are good for, and how large they become.
[[nodiscard]] QString exportNote(const ExportSettings& settings);

/// Why the bit depth can't be chosen, or what it is for.
[[nodiscard]] QString bitDepthHelp(ExportSettings::Format format);

/// "Full Size" or "2048 px long edge".
[[nodiscard]] QString longEdgeText(const std::optional<int>& longEdge);

} // namespace kelvara
