#pragma once

#include "model/Rating.h"

#include <QColor>
#include <QPainter>
#include <QPoint>
#include <QString>

namespace kelvara {

/// Five stars in a row, the ones of the rating filled.
namespace RatingStars {

enum class Empty { shown, hidden };

[[nodiscard]] int width(int starSize, int stars = Rating::maximum);
/// From the top left corner `at`, in logical pixels. Hidden empty stars leave only the filled ones.
void paint(QPainter& painter, const QPoint& at, Rating rating, int starSize, const QColor& color,
           Empty empty);
/// "3 of 5 stars"
[[nodiscard]] QString text(Rating rating);

} // namespace RatingStars

} // namespace kelvara
