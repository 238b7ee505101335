#include "views/LightSlider.h"

#include "views/LightSteps.h"
#include "views/Text.h"
#include "views/Theme.h"

#include <QAccessibleWidget>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace kelvara {

namespace {

using Light = LightAdjustments;

constexpr int sliderHeight = 20;
constexpr double handleRadius = 6.5;
constexpr double trackHeight = 3;
constexpr double neutralReach = 3; // logical pixels around the middle that count as it
constexpr double fineShare = 0.1;
constexpr int wheelNotch = 120; // Qt's eighths of a degree

class AccessibleSlider : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit AccessibleSlider(LightSlider& slider)
        : QAccessibleWidget{&slider, QAccessible::Slider}, m_slider{slider} {}

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        if (kind != QAccessible::Value) return QAccessibleWidget::text(kind);
        return kelvara::text(Light::text(m_slider.slider(), m_slider.amount()));
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    [[nodiscard]] QVariant currentValue() const override { return m_slider.amount(); }
    void setCurrentValue(const QVariant& value) override {
        emit m_slider.gestureBegan();
        emit m_slider.moved(value.toDouble());
    }
    [[nodiscard]] QVariant maximumValue() const override { return Light::limit(m_slider.slider()); }
    [[nodiscard]] QVariant minimumValue() const override { return -Light::limit(m_slider.slider()); }
    [[nodiscard]] QVariant minimumStepSize() const override { return LightSteps::fine(m_slider.slider()); }

private:
    LightSlider& m_slider;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* slider = qobject_cast<LightSlider*>(object);
    return slider ? new AccessibleSlider{*slider} : nullptr;
}

} // namespace

void makeLightSlidersAccessible() {
    QAccessible::installFactory(makeInterface); // a second time does nothing
}

LightSlider::LightSlider(Light::Slider slider, QWidget* parent) : QAbstractSlider{parent}, m_slider{slider} {
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    makeLightSlidersAccessible();
}

QSize LightSlider::sizeHint() const { return {100, sliderHeight}; }

void LightSlider::showAmount(double amount) {
    if (amount == m_amount) return;
    m_amount = amount;
    update();
    if (!QAccessible::isActive()) return;
    QAccessibleValueChangeEvent changed{this, amount};
    QAccessible::updateAccessibility(&changed);
}

double LightSlider::span() const { return std::max(1.0, width() / 2.0 - handleRadius - 1); }

double LightSlider::handleAt() const { return width() / 2.0 + m_amount / Light::limit(m_slider) * span(); }

double LightSlider::atStep(double amount, Qt::KeyboardModifiers modifiers) const {
    const auto isFine = LightSteps::isFine(modifiers);
    if (!isFine && std::abs(amount) < neutralReach / span() * Light::limit(m_slider)) return 0;
    const auto step = isFine ? LightSteps::fine(m_slider) : LightSteps::plain(m_slider);
    return LightSteps::rounded(amount, step);
}

void LightSlider::moveTo(double amount) {
    amount = std::clamp(amount, -Light::limit(m_slider), Light::limit(m_slider));
    if (std::abs(amount - m_amount) >= LightSteps::fine(m_slider) / 2) emit moved(amount);
}

void LightSlider::stepBy(double steps, Qt::KeyboardModifiers modifiers) {
    if (!std::exchange(m_isKeyed, true)) emit gestureBegan();
    moveTo(LightSteps::moved(m_slider, m_amount, steps, modifiers));
}

void LightSlider::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    m_isKeyed = false;
    emit gestureBegan();
    m_pointer = event->position().x();
    m_dragged = m_amount;
    // Beside the handle it goes there and is held, so that one can drag from anywhere.
    if (!LightSteps::isFine(event->modifiers()) && std::abs(m_pointer - handleAt()) > handleRadius + 2) {
        m_dragged = (m_pointer - width() / 2.0) / span() * Light::limit(m_slider);
        moveTo(atStep(m_dragged, event->modifiers()));
    }
    setSliderDown(true);
    update();
}

void LightSlider::mouseMoveEvent(QMouseEvent* event) {
    if (!isSliderDown()) return;
    const auto way = event->position().x() - std::exchange(m_pointer, event->position().x());
    m_dragged +=
        way / span() * Light::limit(m_slider) * (LightSteps::isFine(event->modifiers()) ? fineShare : 1);
    moveTo(atStep(m_dragged, event->modifiers()));
}

void LightSlider::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    setSliderDown(false);
    update();
}

void LightSlider::mouseDoubleClickEvent(QMouseEvent* event) {
    // Of the gesture that its first click began.
    if (event->button() == Qt::LeftButton) moveTo(0);
}

void LightSlider::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Down:
        return stepBy(-1, event->modifiers());
    case Qt::Key_Right:
    case Qt::Key_Up:
        return stepBy(1, event->modifiers());
    case Qt::Key_PageDown:
        return stepBy(-1, Qt::ShiftModifier);
    case Qt::Key_PageUp:
        return stepBy(1, Qt::ShiftModifier);
    default:
        event->ignore();
    }
}

void LightSlider::wheelEvent(QWheelEvent* event) {
    if (!hasFocus()) return event->ignore();
    // With Alt held some platforms turn the wheel's axis.
    const auto turn = event->angleDelta();
    m_turned += turn.y() != 0 ? turn.y() : turn.x();
    const auto notches = m_turned / wheelNotch;
    m_turned %= wheelNotch;
    if (notches != 0) stepBy(notches, event->modifiers());
    event->accept();
}

void LightSlider::focusInEvent(QFocusEvent* event) {
    m_isKeyed = false;
    QAbstractSlider::focusInEvent(event);
    update();
}

void LightSlider::enterEvent(QEnterEvent* event) {
    QAbstractSlider::enterEvent(event);
    update();
}

void LightSlider::leaveEvent(QEvent* event) {
    QAbstractSlider::leaveEvent(event);
    update();
}

void LightSlider::paintEvent(QPaintEvent*) {
    const auto& theme = Theme::current();
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const auto middle = width() / 2.0;
    const auto y = height() / 2.0;
    auto track = theme.text;
    track.setAlpha(theme.isDark() ? 0x26 : 0x22);
    painter.setBrush(track);
    painter.drawRoundedRect(QRectF{0, y - trackHeight / 2, double(width()), trackHeight}, trackHeight / 2,
                            trackHeight / 2);
    painter.drawRect(QRectF{middle - 0.5, y - 5, 1, 10});
    const auto handle = handleAt();
    painter.setBrush(isEnabled() ? theme.accent : theme.tertiaryText);
    painter.drawRect(
        QRectF{std::min(middle, handle), y - trackHeight / 2, std::abs(handle - middle), trackHeight});

    // The handle, a little larger for who is about to take it.
    const auto isLit = isEnabled() && (isSliderDown() || underMouse());
    painter.setPen(QPen{hasFocus()       ? theme.focusRing
                        : theme.isDark() ? theme.separator
                                         : theme.border,
                        hasFocus() ? 2.0 : 1.0});
    painter.setBrush(!isEnabled() ? theme.tertiaryText : theme.isDark() ? theme.text : theme.popover);
    const auto size = isLit ? handleRadius + 0.5 : handleRadius;
    painter.drawEllipse(QPointF{handle, y}, size, size);
}

} // namespace kelvara
