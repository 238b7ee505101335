#pragma once

#include "library/LibraryTypes.h"

#include <QPoint>
#include <QRect>

#include <optional>

namespace kelvara {

/// Where the square cells of a grid stand, in logical pixels from the top left corner of the whole content:
/// arithmetic only, so that no step of it depends on how many photos there are.
class GridLayout {
public:
    static constexpr int spacing = 8;
    static constexpr int padding = 12;

    GridLayout() = default;
    /// `side` of a cell; `infoHeight` of the strip of text under it.
    GridLayout(int width, int side, int infoHeight, std::size_t count);

    [[nodiscard]] int columns() const { return m_columns; }
    [[nodiscard]] std::size_t rows() const;
    [[nodiscard]] int side() const { return m_side; }
    [[nodiscard]] int rowStep() const { return m_cellHeight + spacing; }
    /// The height of all rows with the padding above and below.
    [[nodiscard]] int contentHeight() const;
    [[nodiscard]] QRect cell(std::size_t index) const;
    /// Nothing in the gaps and behind the last cell.
    [[nodiscard]] std::optional<std::size_t> indexAt(const QPoint& point) const;
    /// The items of all rows that a window from `top` down of `height` touches.
    [[nodiscard]] IndexRange visible(int top, int height) const;
    /// The scroll position nearest to `top` that shows the whole cell, with the gap or padding beside it.
    [[nodiscard]] int topThatShows(std::size_t index, int top, int height) const;

private:
    int m_side = 1;
    int m_cellHeight = 1;
    int m_columns = 1;
    int m_left = padding; // of the first column: what is left of the width goes to both margins
    std::size_t m_count = 0;
};

} // namespace kelvara
