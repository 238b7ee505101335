#include "library/FocusNavigation.h"

namespace kelvara {

std::optional<std::size_t> focusTarget(std::size_t index, std::size_t count, std::size_t columns,
                                       MoveDirection direction) {
    const auto before = [index](std::size_t step) -> std::optional<std::size_t> {
        if (index < step) return std::nullopt;
        return index - step;
    };
    const auto after = [index, count](std::size_t step) -> std::optional<std::size_t> {
        if (index + step >= count) return std::nullopt;
        return index + step;
    };
    switch (direction) {
    case MoveDirection::left:
        return before(1);
    case MoveDirection::right:
        return after(1);
    case MoveDirection::up:
        return before(columns);
    case MoveDirection::down:
        if (const auto target = after(columns)) return target;
        if (index / columns < (count - 1) / columns) return count - 1;
        return std::nullopt;
    }
    return std::nullopt;
}

std::vector<std::size_t> neighbourIndices(std::size_t centre, std::size_t count, std::size_t radius) {
    std::vector<std::size_t> indices;
    for (std::size_t distance = 1; distance <= radius; ++distance) {
        if (centre + distance < count) indices.push_back(centre + distance);
        if (distance <= centre) indices.push_back(centre - distance);
    }
    return indices;
}

} // namespace kelvara
