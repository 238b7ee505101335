// PhotoGridView: the pointer and the keys.

#include "views/PhotoDrag.h"
#include "views/PhotoGridView.h"
#include "views/Text.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace kelvara {

namespace {

constexpr double wheelNotch = 120;     // Qt's eighths of a degree
constexpr double pixelsPerNotch = 110; // more than half a row of usual size

} // namespace

bool PhotoGridView::isOnMark(std::size_t index, const QPoint& viewportPoint) const {
    return ThumbnailCell::markButton(cellRect(index), ThumbnailCellState::Style::grid)
        .contains(viewportPoint);
}

void PhotoGridView::hover(const QPoint& viewportPoint) {
    const auto index = viewport()->underMouse() ? indexAt(viewportPoint) : std::nullopt;
    const bool isMark = index && isOnMark(*index, viewportPoint);
    if (index == m_hovered && isMark == m_isMarkHovered) return;
    for (const auto changed : {m_hovered, index}) {
        if (changed && *changed < m_library.visibleItems().size()) viewport()->update(cellRect(*changed));
    }
    m_hovered = index;
    m_isMarkHovered = isMark;
}

void PhotoGridView::unhover() {
    m_hovered.reset();
    m_isMarkHovered = false;
    viewport()->update();
}

void PhotoGridView::mousePressEvent(QMouseEvent* event) {
    m_press.reset();
    const auto point = event->position().toPoint();
    const auto index = indexAt(point);
    if (!index) return;
    const auto url = m_library.visibleItems()[*index].url;
    if (event->button() != Qt::LeftButton) {
        if (event->button() == Qt::RightButton) m_library.setFocusedID(url);
        return QAbstractScrollArea::mousePressEvent(event);
    }
    m_press = Press{point, url, isOnMark(*index, point)};
    if (m_press->isOnMark) return;
    if (event->modifiers().testFlag(Qt::ShiftModifier)) {
        m_library.markRange(url);
    } else {
        m_library.setFocusedID(url);
    }
}

void PhotoGridView::mouseMoveEvent(QMouseEvent* event) {
    const auto point = event->position().toPoint();
    hover(point);
    if (!m_press || m_press->isOnMark || !event->buttons().testFlag(Qt::LeftButton)) return;
    if ((point - m_press->point).manhattanLength() < QApplication::startDragDistance()) return;
    const auto index = m_library.visibleIndex(m_press->url);
    m_press.reset();
    if (index) startDrag(*index);
}

void PhotoGridView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return QAbstractScrollArea::mouseReleaseEvent(event);
    const auto press = std::exchange(m_press, std::nullopt);
    if (!press || !press->isOnMark) return;
    const auto point = event->position().toPoint();
    const auto index = indexAt(point);
    if (index && m_library.visibleItems()[*index].url == press->url && isOnMark(*index, point)) {
        m_library.toggleChecked(press->url);
    }
}

void PhotoGridView::mouseDoubleClickEvent(QMouseEvent* event) {
    const auto point = event->position().toPoint();
    const auto index = indexAt(point);
    if (!index || event->button() != Qt::LeftButton) return;
    // Two quick clicks on the mark button are two clicks.
    if (isOnMark(*index, point) || event->modifiers().testFlag(Qt::ShiftModifier))
        return mousePressEvent(event);
    m_press.reset();
    m_library.setFocusedID(m_library.visibleItems()[*index].url);
    if (m_library.viewMode() == ViewMode::grid) m_library.toggleViewMode();
}

void PhotoGridView::contextMenuEvent(QContextMenuEvent* event) {
    // The button has moved the focus to the photo under the pointer; the key asks for the focused one.
    const auto isKey = event->reason() == QContextMenuEvent::Keyboard;
    if (isKey) showFocused();
    const auto index = isKey ? m_library.focusedIndex() : indexAt(event->pos());
    if (!index) return;
    const auto point = isKey ? cellRect(*index).center() : event->pos();
    emit photoMenuRequested(viewport()->mapToGlobal(point));
}

void PhotoGridView::startDrag(std::size_t index) {
    const auto item = m_library.visibleItems()[index];
    dragPhotos(*this, m_library.actionTargets(item), m_thumbnails[item.url].picture);
}

void PhotoGridView::wheelEvent(QWheelEvent* event) {
    if (event->modifiers().testFlag(Qt::ControlModifier)) return event->ignore();
    const auto pixels = event->pixelDelta().isNull() ? event->angleDelta().y() / wheelNotch * pixelsPerNotch
                                                     : static_cast<double>(event->pixelDelta().y());
    verticalScrollBar()->setValue(top() - static_cast<int>(std::lround(pixels)));
    event->accept();
}

void PhotoGridView::moveByRows(int rows) {
    const auto& items = m_library.visibleItems();
    const auto count = static_cast<std::int64_t>(items.size());
    if (count == 0) return;
    const auto columns = m_layout.columns();
    const auto from = static_cast<std::int64_t>(m_library.focusedIndex().value_or(0));
    auto target = from + static_cast<std::int64_t>(rows) * columns;
    if (target >= count) {
        // The same column in the last row, or the last photo when that row is shorter.
        const auto lastRow = (count - 1) / columns;
        target = std::min(lastRow * columns + from % columns, count - 1);
    } else if (target < 0) {
        target = from % columns;
    }
    m_library.setFocusedID(items[static_cast<std::size_t>(target)].url);
}

void PhotoGridView::keyPressEvent(QKeyEvent* event) {
    const auto& items = m_library.visibleItems();
    const auto rowsPerPage = std::max(viewport()->height() / m_layout.rowStep(), 1);
    if (items.isEmpty()) return event->ignore();
    switch (event->key()) {
    case Qt::Key_PageUp:
        return moveByRows(-rowsPerPage);
    case Qt::Key_PageDown:
        return moveByRows(rowsPerPage);
    case Qt::Key_Home:
        return m_library.setFocusedID(items[0].url);
    case Qt::Key_End:
        return m_library.setFocusedID(items[items.size() - 1].url);
    default:
        // Every other key is the window's.
        return event->ignore();
    }
}

bool PhotoGridView::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::Leave) unhover();
    if (event->type() == QEvent::ToolTip) return showToolTip(static_cast<QHelpEvent&>(*event));
    return QAbstractScrollArea::viewportEvent(event);
}

bool PhotoGridView::showToolTip(QHelpEvent& event) {
    const auto index = indexAt(event.pos());
    if (!index) {
        QToolTip::hideText();
        return true;
    }
    const auto now = state(*index);
    auto help = ThumbnailCell::help(now.name, now.isEdited);
    if (isOnMark(*index, event.pos())) {
        help = now.isMarked ? tr("Unmark for copy (S)") : tr("Mark for copy (S)");
    } else if (now.content == ThumbnailCellState::Content::unreadable) {
        help = ThumbnailCell::unreadableText(now.name);
    }
    QToolTip::showText(event.globalPos(), help.toHtmlEscaped(), viewport(), cellRect(*index));
    return true;
}

} // namespace kelvara
