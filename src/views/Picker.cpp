#include "views/Picker.h"

#include "views/Symbols.h"

#include <QPainter>
#include <QStyledItemDelegate>
#include <QWheelEvent>

namespace kelvara {

Picker::Picker(QWidget* parent) : QComboBox{parent} {
    setItemDelegate(new QStyledItemDelegate{this}); // the usual one ignores the style sheet
}

void Picker::paintEvent(QPaintEvent* event) {
    QComboBox::paintEvent(event);
    constexpr int side = 14;
    const auto& theme = Theme::current();
    QPainter painter{this};
    painter.drawPixmap(width() - side - spacing::small, (height() - side) / 2,
                       symbol(u"chevron.down", side, isEnabled() ? theme.secondaryText : theme.tertiaryText,
                              devicePixelRatioF()));
}

void Picker::wheelEvent(QWheelEvent* event) { event->ignore(); }

} // namespace kelvara
