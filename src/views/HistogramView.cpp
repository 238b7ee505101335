#include "views/HistogramView.h"

#include "views/Theme.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <utility>

namespace kelvara {

namespace {

constexpr int viewHeight = 104;
constexpr int markSide = 22;
constexpr double noticeable = 0.0002; // of the pixels
// Light adds up on a dark ground only, whatever the window looks like. Together the channels are grey.
constexpr QRgb ground = 0xff161616;
constexpr QRgb quietMark = 0xff5a5a5a;
constexpr QRgb channelColors[]{0xff781111, 0xff116815, 0xff112174};
constexpr QRgb hintColor = 0xff9a9a9a;
constexpr QRgb luminanceColor = 0xb0e4e4e4;

/// What stands for all: high enough to show the smaller counts beside the largest.
double peak(const Histogram& histogram) {
    double most = 0;
    // The ends are often far higher than all between them, and have their marks.
    for (const auto* levels : {&histogram.red, &histogram.green, &histogram.blue, &histogram.luminance})
        most = std::max(most, *std::max_element(levels->begin() + 1, levels->end() - 1));
    return most;
}

QPolygonF outline(const Histogram::Levels& levels, double peak, const QRectF& area) {
    const auto height = [&](std::size_t i) {
        // A little smoothed, for few pixels make a comb.
        const auto sum = levels[i - (i > 0)] + 2 * levels[i] + levels[std::min<std::size_t>(i + 1, 255)];
        return std::sqrt(std::min(1.0, sum / 4 / peak)) * area.height();
    };
    QPolygonF line;
    for (std::size_t i = 0; i < levels.size(); ++i)
        line.append({area.left() + static_cast<double>(i) / 255 * area.width(), area.bottom() - height(i)});
    return line;
}

} // namespace

ClippingMark::ClippingMark(const QString& name, const QString& help, QWidget* parent) : QToolButton{parent} {
    setAccessibleName(name);
    setToolTip(help);
    setCheckable(true);
    setFocusPolicy(Qt::TabFocus);
    setFixedSize(markSide, markSide);
}

void ClippingMark::show(double red, double green, double blue) {
    const auto light = [](double share) { return share >= noticeable ? 0xff : 0x30; };
    const auto isClipped = std::max({red, green, blue}) >= noticeable;
    const auto color = isClipped ? QColor{light(red), light(green), light(blue)} : QColor{};
    if (std::exchange(m_color, color) == color) return;
    setAccessibleDescription(isClipped ? tr("Clipped") : QString{});
    update();
}

void ClippingMark::paintEvent(QPaintEvent*) {
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    const auto frame = QRectF{rect()}.adjusted(2.5, 2.5, -2.5, -2.5);
    if (isChecked() || underMouse() || hasFocus()) {
        painter.setPen(hasFocus() ? QPen{Theme::current().focusRing, 2} : QPen{QColor{quietMark}, 1});
        painter.setBrush(isChecked() ? QColor{0x3c, 0x3c, 0x3c} : QColor{Qt::transparent});
        painter.drawRoundedRect(frame, 4, 4);
    }
    const auto middle = frame.center();
    const QPolygonF triangle{{{middle.x() - 4.5, middle.y() + 3.5},
                              {middle.x() + 4.5, middle.y() + 3.5},
                              {middle.x(), middle.y() - 4}}};
    painter.setPen(Qt::NoPen);
    painter.setBrush(isLit() ? m_color : QColor{quietMark});
    painter.drawPolygon(triangle);
}

HistogramView::HistogramView(QWidget* parent) : QWidget{parent} {
    setFixedHeight(viewHeight);
    setAccessibleName(tr("Histogram"));
    m_shadows = new ClippingMark{tr("Clipped Shadows"), tr("Show clipped shadows"), this};
    m_highlights = new ClippingMark{tr("Clipped Highlights"), tr("Show clipped highlights"), this};
    auto* row = new QHBoxLayout{this};
    row->setContentsMargins(spacing::hair, spacing::hair, spacing::hair, 0);
    row->addWidget(m_shadows, 0, Qt::AlignTop);
    row->addStretch(1);
    row->addWidget(m_highlights, 0, Qt::AlignTop);
    for (auto* mark : {m_shadows, m_highlights})
        connect(mark, &QToolButton::toggled, this, &HistogramView::clippingChosen);
}

Clipping HistogramView::clipping() const { return {m_shadows->isChecked(), m_highlights->isChecked()}; }

void HistogramView::show(const std::optional<Histogram>& histogram) {
    m_histogram = histogram;
    const auto all = histogram.value_or(Histogram{});
    m_shadows->show(all.red.front(), all.green.front(), all.blue.front());
    m_highlights->show(all.red.back(), all.green.back(), all.blue.back());
    update();
}

void HistogramView::setHint(const QString& hint) {
    if (std::exchange(m_hint, hint) != hint) update();
}

void HistogramView::paintEvent(QPaintEvent*) {
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath frame;
    frame.addRoundedRect(rect(), radius::popover, radius::popover);
    painter.fillPath(frame, QColor{ground});
    painter.setClipPath(frame);
    m_histogram ? paintLevels(painter) : paintHint(painter);
}

void HistogramView::paintHint(QPainter& painter) const {
    painter.setFont(kelvara::font(TextRole::caption));
    painter.setPen(QColor{hintColor});
    painter.drawText(rect().adjusted(spacing::large, markSide, -spacing::large, -markSide),
                     Qt::AlignCenter | Qt::TextWordWrap, m_hint);
}

void HistogramView::paintLevels(QPainter& painter) const {
    const auto most = peak(*m_histogram);
    if (most <= 0) return;
    const auto area = QRectF{rect()}.adjusted(1, spacing::medium, -1, 0);
    painter.setPen(Qt::NoPen);
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    const Histogram::Levels* channels[]{&m_histogram->red, &m_histogram->green, &m_histogram->blue};
    for (std::size_t i = 0; i < std::size(channels); ++i) {
        auto polygon = outline(*channels[i], most, area);
        polygon.append(area.bottomRight());
        polygon.append(area.bottomLeft());
        painter.setBrush(QColor{channelColors[i]});
        painter.drawPolygon(polygon);
    }
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setPen(QPen{QColor::fromRgba(luminanceColor), 1.2});
    painter.drawPolyline(outline(m_histogram->luminance, most, area));
}

} // namespace kelvara
