#pragma once

#include "library/LibraryTypes.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace kelvara {

/// Where the focus goes from `index` among `count` items laid out `columns` wide; empty where there is
/// nothing in that direction. Down from a full row above a shorter last row goes to the last item.
[[nodiscard]] std::optional<std::size_t> focusTarget(std::size_t index, std::size_t count,
                                                     std::size_t columns, MoveDirection direction);

/// The indices at most `radius` away from `centre`: nearest first, the next before the previous.
[[nodiscard]] std::vector<std::size_t> neighbourIndices(std::size_t centre, std::size_t count,
                                                        std::size_t radius);

} // namespace kelvara
