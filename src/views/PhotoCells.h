#pragma once

#include "library/LibraryViewModel.h"
#include "views/ThumbnailCell.h"

#include <QPoint>
#include <QRect>

#include <optional>

class QWidget;

namespace kelvara {

/// A widget that paints the library's photos as cells: what assistive tools, for which a painted cell is
/// nothing, need to know of it.
class PhotoCells {
public:
    virtual ~PhotoCells() = default;

    [[nodiscard]] virtual LibraryViewModel& library() const = 0;
    /// The widget that the cells are painted on.
    [[nodiscard]] virtual QWidget& canvas() = 0;
    /// On the canvas, also of a cell that is scrolled away.
    [[nodiscard]] virtual QRect cellRect(std::size_t index) const = 0;
    [[nodiscard]] virtual std::optional<std::size_t> indexAt(const QPoint& canvasPoint) const = 0;
    [[nodiscard]] virtual ThumbnailCellState state(std::size_t index) const = 0;
};

/// Lets assistive tools see each cell of `PhotoCells` widgets as an item of a list, with its name, its mark
/// and its stars, that can be opened and marked. For the constructor of such a widget, before
/// anything that is told to those tools, such as its name: they would keep the view they got then.
void makeCellsAccessible(QWidget& view);

} // namespace kelvara
