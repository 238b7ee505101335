#pragma once

#include "model/FileURL.h"
#include "views/ThumbnailCell.h"

#include <QElapsedTimer>
#include <QPainter>

#include <unordered_map>

namespace kelvara {

/// Paints the cells of a view again and again from ready-made images, and makes those that are missing within
/// a limit of time per paint, so that scrolling never waits: what doesn't fit is painted roughly and finished
/// in the paints that follow.
class CellPainter {
public:
    /// Begins a paint.
    void begin();
    void paint(QPainter& painter, const QRect& rect, const FileURL& url, const ThumbnailCellState& state);
    /// Ends the paint and forgets images beyond a few screens of `cellsPerScreen`. True when cells were
    /// painted roughly and the view should paint again.
    [[nodiscard]] bool end(std::size_t cellsPerScreen);
    /// Every cell looks different from now on.
    void clear() { m_images.clear(); }

private:
    void forgetOldest();

    struct Ready {
        ThumbnailCellState state;
        QImage image;
        unsigned lastPaint = 0;
    };
    std::unordered_map<FileURL, Ready> m_images;
    QElapsedTimer m_clock;
    unsigned m_paint = 0;
    bool m_isUnfinished = false;
};

} // namespace kelvara
