#pragma once

#include <QImage>
#include <QRect>
#include <QString>

class QPainter;

namespace kelvara {

/// What an entry of the preset list shows.
struct PresetTileState {
    QString title;
    QImage picture;       ///< Of any size; null while there is none.
    QStringView absence;  ///< The symbol that stands for a picture that doesn't come; empty for none.
    bool isFaint = false; ///< The picture is about to be replaced.
    bool isSelected = false;
    bool isHovered = false;
    bool isFavourite = false;
    bool isStarHovered = false;
    bool hasKeyboard = false;
};

/// Paints the entries of the preset list, and says where they react.
namespace PresetTile {

/// What a tile has below its picture.
[[nodiscard]] int titleHeight();
/// Where a tile's star reacts; `pictureSize` is that of its picture.
[[nodiscard]] QRect star(const QRect& tile, const QSize& pictureSize);
/// The picture over the title.
void paint(QPainter& painter, const QRect& tile, const QSize& pictureSize, const PresetTileState& state);
/// A lower tile as wide as the list, with the picture before the title: the photo as shot.
void paintNone(QPainter& painter, const QRect& rect, const PresetTileState& state);

struct Header {
    QString title;
    QString count;
    bool isExpanded = false;
    bool isHovered = false;
    bool hasKeyboard = false;
};
void paintHeader(QPainter& painter, const QRect& rect, const Header& header);

} // namespace PresetTile

} // namespace kelvara
