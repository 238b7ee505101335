// PresetListView: the pointer and the keys.

#include "views/PresetListView.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QToolTip>

namespace kelvara {

namespace {
/// As the menus say it.
QString fileManagerText() { return QCoreApplication::translate("CommandStates", "Show in Finder"); }
} // namespace

bool PresetListView::isOnStar(std::size_t index, const QPoint& viewportPoint) const {
    return entry(index).kind == Entry::Kind::tile &&
           PresetTile::star(entryRect(index), m_layout.pictureSize()).contains(viewportPoint);
}

void PresetListView::hover(const QPoint& viewportPoint) {
    const auto index = indexAt(viewportPoint);
    setHovered(index, index && isOnStar(*index, viewportPoint));
}

void PresetListView::hoverWhatIsUnderPointer() {
    if (viewport()->underMouse() && !QApplication::activePopupWidget())
        hover(viewport()->mapFromGlobal(QCursor::pos()));
    else
        unhover();
}

void PresetListView::unhover() { setHovered(std::nullopt, false); }

void PresetListView::setHovered(std::optional<std::size_t> index, bool isOnStar) {
    if (index == m_hovered && isOnStar == m_isStarHovered) return;
    const bool isOther = index != m_hovered;
    m_hovered = index;
    m_isStarHovered = isOnStar;
    viewport()->update();
    if (!isOther) return;
    const auto isPreset = index && !isHeader(*index);
    m_presets.setHoveredPresetID(isPreset ? std::optional{presetID(*index)} : std::nullopt);
}

void PresetListView::toggleFavourite(const std::string& presetID) {
    m_presets.setFavourite(presetID, !m_presets.isFavourite(presetID));
}

void PresetListView::press(std::size_t index) {
    const QScopedValueRollback pressing{m_isPressing, true};
    m_current = place(index);
    if (isHeader(index)) return m_presets.setExpanded(category(index).id, !isOn(index));
    m_presets.select(isOn(index) ? std::string{} : presetID(index));
}

void PresetListView::mousePressEvent(QMouseEvent* event) {
    const auto point = event->position().toPoint();
    const auto index = indexAt(point);
    if (!index || event->button() != Qt::LeftButton) return QAbstractScrollArea::mousePressEvent(event);
    if (isOnStar(*index, point)) return toggleFavourite(presetID(*index));
    press(*index);
}

void PresetListView::mouseMoveEvent(QMouseEvent* event) { hover(event->position().toPoint()); }

void PresetListView::mouseDoubleClickEvent(QMouseEvent* event) {
    // Two quick clicks choose once; a star and a section follow each of them.
    const auto point = event->position().toPoint();
    const auto index = indexAt(point);
    if (index && (isHeader(*index) || isOnStar(*index, point))) mousePressEvent(event);
}

void PresetListView::contextMenuEvent(QContextMenuEvent* event) {
    const auto isKey = event->reason() == QContextMenuEvent::Keyboard;
    const auto index = isKey ? currentIndex() : indexAt(event->pos());
    if (isKey && index) showEntry(*index);
    auto* menu = new QMenu{this};
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (index && entry(*index).kind == Entry::Kind::tile) {
        const auto id = presetID(*index);
        menu->addAction(m_presets.isFavourite(id) ? tr("Remove from Favourites") : tr("Add to Favourites"),
                        this, [this, id] { toggleFavourite(id); });
        if (m_presets.isImported(id)) {
            menu->addAction(fileManagerText(), this, [this, id] { m_presets.reveal(id); });
            menu->addAction(tr("Move to Trash…"), this, [this, id] { emit removalRequested(id); });
        }
        menu->addSeparator();
    }
    menu->addAction(tr("Import Presets…"), this, &PresetListView::importRequested);
    menu->popup(isKey && index ? viewport()->mapToGlobal(entryRect(*index).center()) : event->globalPos());
}

void PresetListView::move(PresetListLayout::Step step) {
    const auto from = currentIndex();
    const auto to = from ? m_layout.neighbour(*from, step) : 0;
    m_current = place(to);
    if (!isHeader(to)) m_presets.select(presetID(to));
    showEntry(to);
    tellAssistiveTools(*this, QAccessible::Focus);
    viewport()->update();
}

bool PresetListView::foldOrUnfold(std::size_t index, bool expanded) {
    if (!isHeader(index) || isOn(index) == expanded) return false;
    m_presets.setExpanded(category(index).id, expanded);
    return true;
}

void PresetListView::keyPressEvent(QKeyEvent* event) {
    using Step = PresetListLayout::Step;
    const auto current = currentIndex();
    switch (event->key()) {
    case Qt::Key_Left:
        if (!current || !foldOrUnfold(*current, false)) move(Step::left);
        return;
    case Qt::Key_Right:
        if (!current || !foldOrUnfold(*current, true)) move(Step::right);
        return;
    case Qt::Key_Up:
        return move(Step::up);
    case Qt::Key_Down:
        return move(Step::down);
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (current) press(*current);
        return;
    default:
        // Every other key is the window's, or scrolls.
        QAbstractScrollArea::keyPressEvent(event);
    }
}

void PresetListView::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    if (!currentIndex()) {
        const auto selected = indexOfPreset(m_presets.selectedPresetID());
        m_current = place(selected.value_or(0));
    }
    showEntry(*currentIndex());
    tellAssistiveTools(*this, QAccessible::Focus);
    viewport()->update();
}

void PresetListView::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

bool PresetListView::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::Leave) unhover();
    if (event->type() == QEvent::ToolTip) return showToolTip(static_cast<QHelpEvent&>(*event));
    return QAbstractScrollArea::viewportEvent(event);
}

bool PresetListView::showToolTip(QHelpEvent& event) {
    const auto index = indexAt(event.pos());
    if (!index || entry(*index).kind != Entry::Kind::tile) {
        QToolTip::hideText();
        return true;
    }
    const auto rect = entryRect(*index);
    if (isOnStar(*index, event.pos())) {
        const auto isFavourite = m_presets.isFavourite(presetID(*index));
        QToolTip::showText(event.globalPos(),
                           isFavourite ? tr("Remove from Favourites") : tr("Add to Favourites"), viewport(),
                           PresetTile::star(rect, m_layout.pictureSize()));
        return true;
    }
    const auto summary = description(*index);
    auto help = QStringLiteral("<b>") + title(*index).toHtmlEscaped() + QStringLiteral("</b>");
    if (!summary.isEmpty()) help += QStringLiteral("<br>") + summary.toHtmlEscaped();
    QToolTip::showText(event.globalPos(), help, viewport(), rect);
    return true;
}

} // namespace kelvara
