#include "views/LightValueField.h"

#include "views/LightSteps.h"
#include "views/Text.h"
#include "views/Theme.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyleOptionFrame>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace kelvara {

namespace {

double digitWidth(const QFontMetricsF& metrics) {
    double width = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        width = std::max(width, metrics.horizontalAdvance(QChar{digit}));
    return width;
}

/// From the right, each figure in the middle of a column.
void drawFigures(QPainter& painter, const QRectF& area, const QString& text) {
    const QFontMetricsF metrics{painter.font()};
    const auto column = digitWidth(metrics);
    auto right = area.right();
    for (auto c = text.crbegin(); c != text.crend(); ++c) {
        const auto natural = metrics.horizontalAdvance(*c);
        const auto width = c->isDigit() ? column : natural;
        right -= width;
        painter.drawText(QPointF{right + (width - natural) / 2,
                                 area.center().y() + (metrics.ascent() - metrics.descent()) / 2},
                         *c);
    }
}

} // namespace

LightValueField::LightValueField(LightAdjustments::Slider slider, QWidget* parent)
    : QLineEdit{parent}, m_slider{slider} {
    setObjectName(QStringLiteral("lightValue"));
    setFont(kelvara::font(TextRole::caption));
    setAlignment(Qt::AlignRight);
    setMaxLength(8);
    const QFontMetricsF metrics{font()};
    setFixedWidth(
        static_cast<int>(metrics.horizontalAdvance(QStringLiteral("+.")) + 3 * digitWidth(metrics)) +
        2 * textMargin + spacing::tiny);
    connect(this, &QLineEdit::editingFinished, this, &LightValueField::finish);
    showText();
}

void LightValueField::showAmount(double amount) {
    if (std::exchange(m_amount, amount) == amount) return; // what is selected stays selected
    if (!hasFocus() || !isModified()) showText();
}

void LightValueField::showText() {
    setText(kelvara::text(LightAdjustments::text(m_slider, m_amount)));
    setModified(false);
}

std::optional<double> LightValueField::typed() const {
    if (!isModified()) return std::nullopt;
    bool isNumber = false;
    const auto number =
        QLineEdit::text().trimmed().replace(u',', u'.').replace(QChar{u'−'}, u'-').toDouble(&isNumber);
    return isNumber ? std::optional{number} : std::nullopt;
}

void LightValueField::finish() {
    m_isStepping = false;
    if (!isModified()) return;
    const auto number = typed();
    setModified(false);
    if (number) {
        emit gestureBegan();
        emit moved(*number);
    }
    showText();
}

void LightValueField::keyPressEvent(QKeyEvent* event) {
    const auto isUp = event->key() == Qt::Key_Up;
    if (!isUp && event->key() != Qt::Key_Down) return QLineEdit::keyPressEvent(event);
    const auto from = typed().value_or(m_amount);
    setModified(false);
    if (!std::exchange(m_isStepping, true)) emit gestureBegan();
    emit moved(LightSteps::moved(m_slider, from, isUp ? 1 : -1, event->modifiers()));
    showText();
    selectAll();
}

bool LightValueField::event(QEvent* event) {
    // The window takes Escape to give the keyboard back to the photos, which would take what was typed.
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<const QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        showText();
    }
    return QLineEdit::event(event);
}

void LightValueField::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    // After the click, which sets the cursor.
    QTimer::singleShot(0, this, &QLineEdit::selectAll);
}

void LightValueField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    deselect();
    update();
}

void LightValueField::paintEvent(QPaintEvent* event) {
    if (hasFocus()) return QLineEdit::paintEvent(event);
    QPainter painter{this};
    QStyleOptionFrame option;
    initStyleOption(&option);
    style()->drawPrimitive(QStyle::PE_PanelLineEdit, &option, &painter, this);
    painter.setFont(font());
    const auto& theme = Theme::current();
    painter.setPen(!isEnabled() ? theme.tertiaryText : m_amount == 0 ? theme.secondaryText : theme.text);
    drawFigures(painter, QRectF{rect()}.adjusted(textMargin, 0, -textMargin, 0), QLineEdit::text());
}

} // namespace kelvara
