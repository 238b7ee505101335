#include "views/GridLayout.h"

#include <algorithm>
#include <limits>

namespace kelvara {

GridLayout::GridLayout(int width, int side, int infoHeight, std::size_t count)
    : m_side{std::max(side, 1)}, m_cellHeight{m_side + std::max(infoHeight, 0)}, m_count{count} {
    m_columns = std::max(1, (spacing + width - 2 * padding) / (spacing + m_side));
    const auto used = m_columns * (m_side + spacing) - spacing;
    m_left = std::max(padding, (width - used) / 2);
}

std::size_t GridLayout::rows() const {
    const auto columns = static_cast<std::size_t>(m_columns);
    return (m_count + columns - 1) / columns;
}

int GridLayout::contentHeight() const {
    if (m_count == 0) return 0;
    const auto height = static_cast<std::int64_t>(rows()) * rowStep() - spacing + 2 * padding;
    return static_cast<int>(std::min<std::int64_t>(height, std::numeric_limits<int>::max()));
}

QRect GridLayout::cell(std::size_t index) const {
    const auto columns = static_cast<std::size_t>(m_columns);
    const auto row = static_cast<int>(index / columns);
    const auto column = static_cast<int>(index % columns);
    return {m_left + column * (m_side + spacing), padding + row * rowStep(), m_side, m_cellHeight};
}

std::optional<std::size_t> GridLayout::indexAt(const QPoint& point) const {
    const auto x = point.x() - m_left;
    const auto y = point.y() - padding;
    if (x < 0 || y < 0) return std::nullopt;
    const auto column = x / (m_side + spacing);
    if (column >= m_columns || x % (m_side + spacing) >= m_side || y % rowStep() >= m_cellHeight) {
        return std::nullopt;
    }
    const auto index = static_cast<std::size_t>(y / rowStep()) * static_cast<std::size_t>(m_columns) +
                       static_cast<std::size_t>(column);
    return index < m_count ? std::optional{index} : std::nullopt;
}

IndexRange GridLayout::visible(int top, int height) const {
    if (m_count == 0 || height <= 0) return {};
    const auto columns = static_cast<std::size_t>(m_columns);
    const auto lastRow = rows() - 1;
    // A row's cells reach to `spacing` above the next row; the gap itself shows no cell.
    const auto above = std::max(0, top - padding + spacing);
    const auto below = std::max(0, top + height - 1 - padding);
    const auto first = static_cast<std::size_t>(above / rowStep());
    const auto last = std::min(static_cast<std::size_t>(below / rowStep()), lastRow);
    if (first > last) return {};
    return {first * columns, std::min((last + 1) * columns, m_count)};
}

int GridLayout::topThatShows(std::size_t index, int top, int height) const {
    const auto rect = cell(index);
    const auto row = index / static_cast<std::size_t>(m_columns);
    const auto above = row == 0 ? padding : spacing;
    const auto below = row + 1 == rows() ? padding : spacing;
    const auto highest = rect.top() - above;
    const auto lowest = rect.top() + rect.height() + below - height;
    if (lowest > highest) return highest; // taller than the window: its top counts
    return std::clamp(top, lowest, highest);
}

} // namespace kelvara
