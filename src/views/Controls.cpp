#include "views/Controls.h"

#include "views/Symbols.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

#include <algorithm>

namespace kelvara {

Panel::Panel(QColor Theme::*background, QWidget* parent) : QWidget{parent}, m_background{background} {
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void Panel::setHairlines(Qt::Edges edges) {
    m_edges = edges;
    update();
}

void Panel::paintEvent(QPaintEvent*) {
    const auto& theme = Theme::current();
    QPainter painter{this};
    painter.fillRect(rect(), theme.*m_background);
    if (m_edges & Qt::TopEdge) painter.fillRect(0, 0, width(), 1, theme.separator);
    if (m_edges & Qt::BottomEdge) painter.fillRect(0, height() - 1, width(), 1, theme.separator);
}

ElidedLabel::ElidedLabel(QWidget* parent, Qt::TextElideMode mode) : QLabel{parent}, m_mode{mode} {
    setTextFormat(Qt::PlainText);
}

QSize ElidedLabel::minimumSizeHint() const {
    return {std::min(sizeHint().width(), fontMetrics().averageCharWidth() * 4),
            QLabel::minimumSizeHint().height()};
}

QSize ElidedLabel::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text()) + 2, QLabel::sizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter{this};
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(contentsRect(), static_cast<int>(alignment()),
                     fontMetrics().elidedText(text(), m_mode, contentsRect().width()));
}

bool ElidedLabel::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        const auto isShortened = fontMetrics().horizontalAdvance(text()) > contentsRect().width();
        if (isShortened) QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text(), this);
        return isShortened;
    }
    return QLabel::event(event);
}

QLabel* makeLabel(TextRole role, Tone tone, QWidget* parent, const QString& text) {
    auto* label = new QLabel{text, parent};
    label->setTextFormat(Qt::PlainText);
    dress(*label, role, tone);
    return label;
}

void dress(QLabel& label, TextRole role, Tone tone) {
    label.setFont(font(role));
    // The palette's quiet colour, so that the label follows a change of the theme.
    label.setForegroundRole(tone == Tone::quiet ? QPalette::PlaceholderText : QPalette::WindowText);
}

QToolButton* makeIconButton(QStringView symbolName, const QString& name, const QString& help,
                            QWidget* parent) {
    auto* button = new QToolButton{parent};
    button->setIcon(symbolIcon(symbolName, &Theme::text));
    button->setIconSize({18, 18});
    button->setAccessibleName(name);
    button->setToolTip(help);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

void setSymbol(QToolButton& button, const QIcon& icon, int side) {
    button.setIcon(icon);
    button.setIconSize({side + 6, side});
    setStyleProperty(button, "pictured", true);
}

QToolButton* makeChip(const QString& text, const QString& help, QWidget* parent) {
    auto* chip = new QToolButton{parent};
    chip->setText(text);
    chip->setToolTip(help);
    chip->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    chip->setFont(font(TextRole::caption));
    chip->setFocusPolicy(Qt::TabFocus);
    chip->setProperty("chip", true);
    return chip;
}

void setChipActive(QToolButton& chip, bool active) { setStyleProperty(chip, "active", active); }

void setStyleProperty(QWidget& widget, const char* name, const QVariant& value) {
    if (widget.property(name) == value) return;
    widget.setProperty(name, value);
    widget.style()->unpolish(&widget);
    widget.style()->polish(&widget);
    widget.update();
}

} // namespace kelvara
