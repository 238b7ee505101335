#pragma once

#include "library/LibraryIndex.h"
#include "library/LibraryTypes.h"

#include <cstdint>
#include <vector>

namespace kelvara {

/// Positions of all items in the given order. The files of a shot stay together; ties go by file name, and
/// keep the order of the items. Descending is the ascending order reversed as a whole, so that items without
/// a date, last when ascending, come first.
[[nodiscard]] std::vector<std::uint32_t> sorted(const LibraryIndex& index, std::size_t itemCount,
                                                SortOrder order, bool ascending);

} // namespace kelvara
