#include "views/BusyIndicator.h"

#include "views/ApplicationStyle.h"
#include "views/Symbols.h"

#include <QPainter>

#include <chrono>

namespace kelvara {

BusyIndicator::BusyIndicator(int side, QWidget* parent) : QWidget{parent}, m_side{side} {
    setFixedSize(side, side);
    setAccessibleName(tr("In progress"));
    m_timer.setInterval(std::chrono::milliseconds{33});
    connect(&m_timer, &QTimer::timeout, this, [this] {
        m_angle = (m_angle + 12) % 360;
        update();
    });
}

void BusyIndicator::paintEvent(QPaintEvent*) {
    const auto& theme = Theme::current();
    QPainter painter{this};
    if (!allowsMotion(*this)) {
        painter.drawPixmap(0, 0, symbol(u"ellipsis", m_side, theme.secondaryText, devicePixelRatioF()));
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal stroke = m_side >= 24 ? 3 : 2;
    const auto ring = QRectF{rect()}.adjusted(stroke, stroke, -stroke, -stroke);
    auto color = theme.text;
    color.setAlpha(0x28);
    painter.setPen(QPen{color, stroke, Qt::SolidLine, Qt::RoundCap});
    painter.drawEllipse(ring);
    painter.setPen(QPen{theme.secondaryText, stroke, Qt::SolidLine, Qt::RoundCap});
    painter.drawArc(ring, -m_angle * 16, 90 * 16);
}

void BusyIndicator::showEvent(QShowEvent*) {
    if (allowsMotion(*this)) m_timer.start();
}

void BusyIndicator::hideEvent(QHideEvent*) { m_timer.stop(); }

} // namespace kelvara
