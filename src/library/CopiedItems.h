#pragma once

#include "services/CopyService.h"

#include <span>
#include <vector>

namespace kelvara {

/// Those of `items` that lie complete where `plans` wanted them, by this copy or an earlier one; none that
/// `report` says have failed, whatever lies there. Looks at the destinations, so it blocks.
[[nodiscard]] std::vector<PhotoItem> copiedItems(const FileSystem& files, std::span<const PhotoItem> items,
                                                 std::span<const CopyService::Plan> plans,
                                                 const CopyService::Report& report);

} // namespace kelvara
