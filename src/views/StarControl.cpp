#include "views/StarControl.h"

#include "views/RatingStars.h"
#include "views/Theme.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace kelvara {

namespace {
constexpr int starSize = 16;
constexpr int height = 20;
} // namespace

StarControl::StarControl(QWidget* parent) : QWidget{parent} {
    setMouseTracking(true);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setToolTip(tr("Click a star to rate (0–5)"));
    setRating({});
}

void StarControl::setRating(Rating rating) {
    m_rating = rating;
    setAccessibleName(RatingStars::text(rating));
    update();
}

QSize StarControl::sizeHint() const { return {RatingStars::width(starSize), kelvara::height}; }

int StarControl::starAt(const QPointF& point) const {
    const auto step = static_cast<double>(width()) / Rating::maximum;
    return std::clamp(static_cast<int>(point.x() / step) + 1, 1, Rating::maximum);
}

void StarControl::setHovered(int star) {
    if (star == m_hovered) return;
    m_hovered = star;
    update();
}

void StarControl::paintEvent(QPaintEvent*) {
    const auto& theme = Theme::current();
    QPainter painter{this};
    const QPoint at{0, (kelvara::height - starSize) / 2};
    const auto shown = m_hovered > 0 ? *Rating::fromRawValue(m_hovered) : m_rating;
    if (m_hovered > 0) painter.setOpacity(0.75); // what a click would choose
    RatingStars::paint(painter, at, shown, starSize, shown == Rating{} ? theme.secondaryText : theme.star,
                       RatingStars::Empty::shown);
}

void StarControl::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return QWidget::mousePressEvent(event);
    const auto star = starAt(event->position());
    setHovered(0); // shows what was chosen until the pointer moves on
    emit chosen(*Rating::fromRawValue(star == m_rating.rawValue() ? 0 : star));
}

void StarControl::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() == Qt::NoButton) setHovered(starAt(event->position()));
}

void StarControl::leaveEvent(QEvent*) { setHovered(0); }

} // namespace kelvara
