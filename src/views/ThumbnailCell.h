#pragma once

#include "model/MediaKind.h"
#include "model/Rating.h"

#include <QImage>
#include <QRect>
#include <QString>

#include <optional>

class QPainter;

namespace kelvara {

/// What the cell of one photo shows.
struct ThumbnailCellState {
    enum class Content { loading, picture, unreadable };
    enum class Style { grid, filmstrip };

    Style style = Style::grid;
    Content content = Content::loading;
    QImage picture; ///< Of any size, upright.
    QString name;
    QString exposure; ///< "ƒ/2.8 · 1/250s · ISO 400", or as much as is known.
    QString badge;    ///< The extension: "NEF".
    std::optional<MediaKind> kind;
    Rating rating;
    bool showsInfo = false;
    bool isEdited = false;
    bool isMarked = false;
    bool isFocused = false;
    bool isHovered = false;
    bool isMarkHovered = false;

    /// Whether both look the same but for the focus ring, which is drawn apart.
    [[nodiscard]] bool looksLike(const ThumbnailCellState& other) const;
};

/// Paints cells. `rect` is the whole cell in logical pixels: a square with the info strip, two lines, under
/// it.
namespace ThumbnailCell {

/// The height of the info strip.
[[nodiscard]] int infoHeight();
/// Where the mark button reacts.
[[nodiscard]] QRect markButton(const QRect& rect, ThumbnailCellState::Style style);

/// The cell as an image for a screen, for painting again and again: everything but the focus ring.
[[nodiscard]] QImage render(const QSize& size, const ThumbnailCellState& state, qreal devicePixelRatio);
/// The same at once and with less care, for the moment while it scrolls by.
void paintRoughly(QPainter& painter, const QRect& rect, const ThumbnailCellState& state);
/// Lies around the cell, in the gap between cells.
void paintFocusRing(QPainter& painter, const QRect& rect);

/// What assistive tools say: "Marked, 3 of 5 stars, Edited"; nothing of stars where there are none.
[[nodiscard]] QString accessibleValue(bool isMarked, Rating rating, bool isEdited = false);
/// What is said of the photo under the pointer: "DSC_1.NEF · Edited".
[[nodiscard]] QString help(const QString& name, bool isEdited);
[[nodiscard]] QString unreadableText(const QString& name);

} // namespace ThumbnailCell

} // namespace kelvara
