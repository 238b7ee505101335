#include "views/ResettingSlider.h"

#include <QMouseEvent>
#include <QStyleOptionSlider>

namespace kelvara {

ResettingSlider::ResettingSlider(int usualValue, QWidget* parent)
    : QSlider{Qt::Horizontal, parent}, m_usualValue{usualValue} {
    setFocusPolicy(Qt::TabFocus);
}

void ResettingSlider::mousePressEvent(QMouseEvent* event) {
    QStyleOptionSlider option;
    initStyleOption(&option);
    const auto handle = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    // Beside the handle it goes there and is held, so that one can drag from anywhere.
    if (event->button() == Qt::LeftButton && !handle.contains(event->position().toPoint())) {
        const auto room = width() - handle.width();
        setValue(QStyle::sliderValueFromPosition(minimum(), maximum(),
                                                 qRound(event->position().x()) - handle.width() / 2, room));
    }
    QSlider::mousePressEvent(event);
}

void ResettingSlider::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) setValue(m_usualValue);
}

} // namespace kelvara
