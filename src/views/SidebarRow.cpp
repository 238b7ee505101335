#include "views/SidebarRow.h"

#include "views/BusyIndicator.h"
#include "views/Controls.h"
#include "views/Symbols.h"

#include <QPainter>

#include <algorithm>

namespace kelvara {

namespace {
constexpr int margin = 8;
constexpr int symbolSide = 18;
constexpr int textStart = margin + symbolSide + 9;
constexpr int buttonSide = 26;
} // namespace

SidebarRow::SidebarRow(const QString& symbolName, const QString& name, const QString& detail, QWidget* parent)
    : QAbstractButton{parent}, m_symbolName{symbolName}, m_detail{detail} {
    setText(name);
    setAccessibleName(name);
    setAccessibleDescription(detail);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void SidebarRow::setCurrent(bool current) {
    m_isCurrent = current;
    update();
}

QSize SidebarRow::sizeHint() const {
    const QFontMetrics name{kelvara::font(TextRole::body)};
    const QFontMetrics detail{kelvara::font(TextRole::caption)};
    const auto lines = name.height() + (m_detail.isEmpty() ? 0 : detail.height());
    return {textStart + name.horizontalAdvance(text()) + margin + trailingWidth(),
            lines + (m_detail.isEmpty() ? 10 : 9)};
}

void SidebarRow::paintEvent(QPaintEvent*) {
    const auto& theme = Theme::current();
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_isCurrent || isDown()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme.selection);
        painter.drawRoundedRect(rect(), radius::control, radius::control);
    } else if (underMouse()) {
        auto hover = theme.text;
        hover.setAlpha(0x12);
        painter.setPen(Qt::NoPen);
        painter.setBrush(hover);
        painter.drawRoundedRect(rect(), radius::control, radius::control);
    }
    if (hasFocus()) {
        painter.setPen(QPen{theme.focusRing, 2});
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF{rect()}.adjusted(1, 1, -1, -1), radius::control, radius::control);
    }
    const auto ink = m_isCurrent ? theme.accent : theme.secondaryText;
    painter.drawPixmap(margin, (height() - symbolSide) / 2,
                       symbol(m_symbolName, symbolSide, ink, devicePixelRatioF()));

    const auto width = this->width() - textStart - margin - trailingWidth();
    const auto nameFont = kelvara::font(TextRole::body);
    const auto detailFont = kelvara::font(TextRole::caption);
    const QFontMetrics nameMetrics{nameFont};
    const QFontMetrics detailMetrics{detailFont};
    const auto lines = nameMetrics.height() + (m_detail.isEmpty() ? 0 : detailMetrics.height());
    const auto top = (height() - lines) / 2;
    painter.setPen(theme.text);
    painter.setFont(nameFont);
    painter.drawText(textStart, top + nameMetrics.ascent(),
                     nameMetrics.elidedText(text(), Qt::ElideMiddle, width));
    if (m_detail.isEmpty()) return;
    painter.setPen(theme.secondaryText);
    painter.setFont(detailFont);
    painter.drawText(textStart, top + nameMetrics.height() + detailMetrics.ascent(),
                     detailMetrics.elidedText(m_detail, Qt::ElideRight, width));
}

void SidebarRow::enterEvent(QEnterEvent* event) {
    QAbstractButton::enterEvent(event);
    update();
}

void SidebarRow::leaveEvent(QEvent* event) {
    QAbstractButton::leaveEvent(event);
    update();
}

VolumeRow::VolumeRow(const QString& symbolName, const QString& name, const QString& detail, bool canEject,
                     QWidget* parent)
    : SidebarRow{symbolName, name, detail, parent} {
    if (!canEject) return;
    m_eject = makeIconButton(u"eject", tr("Eject %1").arg(name), tr("Eject"), this);
    m_eject->setIconSize({15, 15});
    m_eject->setFixedSize(buttonSide, buttonSide);
    connect(m_eject, &QToolButton::clicked, this, &VolumeRow::ejectRequested);
    m_busy = new BusyIndicator{16, this};
    m_busy->hide();
}

void VolumeRow::setEjecting(bool ejecting) {
    if (!m_eject) return;
    m_eject->setVisible(!ejecting);
    m_busy->setVisible(ejecting);
}

void VolumeRow::resizeEvent(QResizeEvent* event) {
    SidebarRow::resizeEvent(event);
    if (!m_eject) return;
    m_eject->move(width() - buttonSide - 4, (height() - buttonSide) / 2);
    m_busy->move(width() - buttonSide / 2 - 4 - 8, (height() - 16) / 2);
}

int VolumeRow::trailingWidth() const { return m_eject ? buttonSide : 0; }

} // namespace kelvara
