#include "views/RatingStars.h"

#include "views/Symbols.h"

#include <QCoreApplication>

namespace kelvara::RatingStars {

namespace {

constexpr double emptyOpacity = 0.4;

int step(int starSize) { return starSize + 1; }

} // namespace

int width(int starSize, int stars) { return stars > 0 ? stars * step(starSize) - 1 : 0; }

void paint(QPainter& painter, const QPoint& at, Rating rating, int starSize, const QColor& color,
           Empty empty) {
    const auto ratio = painter.device()->devicePixelRatioF();
    const auto filled = symbol(u"star.fill", starSize, color, ratio);
    for (int star = 1; star <= Rating::maximum; ++star) {
        const QPoint place{at.x() + (star - 1) * step(starSize), at.y()};
        if (star <= rating.rawValue()) {
            painter.drawPixmap(place, filled);
        } else if (empty == Empty::shown) {
            painter.setOpacity(emptyOpacity);
            painter.drawPixmap(place, symbol(u"star", starSize, color, ratio));
            painter.setOpacity(1);
        }
    }
}

QString text(Rating rating) {
    return QCoreApplication::translate("RatingStars", "%1 of %2 stars")
        .arg(rating.rawValue())
        .arg(Rating::maximum);
}

} // namespace kelvara::RatingStars
