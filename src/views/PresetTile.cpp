#include "views/PresetTile.h"

#include "views/Symbols.h"
#include "views/Theme.h"

#include <QCoreApplication>
#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace kelvara {

namespace {

constexpr int titleGap = 5;
constexpr int starSide = 15;
constexpr int starMargin = 5;
constexpr int frameDistance = 3;
constexpr double faint = 0.4;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(PresetTile)
};

void paintSymbol(QPainter& painter, const QPoint& centre, QStringView name, int side, const QColor& color) {
    const auto pixmap = symbol(name, side, color, painter.device()->devicePixelRatioF());
    painter.drawPixmap(QPoint{centre.x() - side / 2, centre.y() - side / 2}, pixmap);
}

/// Fitted into `area` on whole screen pixels.
QRectF fitted(const QImage& picture, const QRect& area, qreal ratio) {
    const auto size = QSizeF{picture.size()}.scaled(QSizeF{area.size()} * ratio, Qt::KeepAspectRatio);
    const auto width = std::max(std::round(size.width()), 1.0) / ratio;
    const auto height = std::max(std::round(size.height()), 1.0) / ratio;
    const auto inset = [ratio](double room) { return std::floor(room * ratio / 2) / ratio; };
    return {area.x() + inset(area.width() - width), area.y() + inset(area.height() - height), width, height};
}

void paintPicture(QPainter& painter, const QRect& area, const PresetTileState& state) {
    const auto& theme = Theme::current();
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.field);
    painter.drawRoundedRect(area, radius::thumbnail, radius::thumbnail);
    if (state.picture.isNull()) {
        const auto side = std::clamp(area.height() / 3, 14, 28);
        if (!state.absence.isEmpty())
            paintSymbol(painter, area.center(), state.absence, side, theme.tertiaryText);
        return;
    }
    const auto target = fitted(state.picture, area, painter.device()->devicePixelRatioF());
    QBrush brush{state.picture};
    brush.setTransform(
        QTransform::fromTranslate(target.x(), target.y())
            .scale(target.width() / state.picture.width(), target.height() / state.picture.height()));
    painter.setBrush(brush);
    painter.setOpacity(state.isFaint ? faint : 1);
    painter.drawRoundedRect(target, radius::thumbnail - 1, radius::thumbnail - 1);
    painter.setOpacity(1);
}

void paintFrame(QPainter& painter, const QRect& area, const PresetTileState& state) {
    const auto& theme = Theme::current();
    if (!state.isSelected && !state.isHovered && !state.hasKeyboard) return;
    const auto isStrong = state.isSelected || state.hasKeyboard;
    const auto width = isStrong ? 2.0 : 1.0;
    const auto grow = frameDistance - width / 2;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen{state.isSelected    ? theme.accent
                        : state.hasKeyboard ? theme.focusRing
                                            : theme.tertiaryText,
                        width, state.isSelected || !state.hasKeyboard ? Qt::SolidLine : Qt::DotLine});
    painter.drawRoundedRect(QRectF{area}.adjusted(-grow, -grow, grow, grow), radius::thumbnail + 2,
                            radius::thumbnail + 2);
}

void paintStar(QPainter& painter, const QRect& place, const PresetTileState& state) {
    if (!state.isFavourite && !state.isHovered) return;
    const auto& theme = Theme::current();
    const auto side = starSide + 6;
    QRect disc{0, 0, side, side};
    disc.moveCenter(place.center());
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.overlay);
    painter.drawEllipse(disc);
    // On the overlay, which is dark in both appearances.
    const auto gold = Theme::make(Theme::Appearance::dark).star;
    auto ink = state.isFavourite || state.isStarHovered ? gold : theme.onOverlay;
    paintSymbol(painter, disc.center() + QPoint{1, 1}, state.isFavourite ? u"star.fill" : u"star", starSide,
                ink);
}

void paintTitle(QPainter& painter, const QRect& line, const QString& title, Qt::Alignment alignment) {
    const auto titleFont = font(TextRole::caption);
    painter.setFont(titleFont);
    painter.setPen(Theme::current().text);
    painter.drawText(line, static_cast<int>(alignment | Qt::AlignVCenter) | Qt::TextSingleLine,
                     QFontMetrics{titleFont}.elidedText(title, Qt::ElideMiddle, line.width()));
}

QSize nonePictureSize(const QRect& rect) {
    const auto height = rect.height() - 2 * spacing::tiny;
    return {height * 3 / 2, height};
}

} // namespace

namespace PresetTile {

int titleHeight() { return QFontMetrics{font(TextRole::caption)}.height() + titleGap; }

QRect star(const QRect& tile, const QSize& pictureSize) {
    constexpr int side = starSide + 2 * starMargin;
    return {tile.left() + pictureSize.width() - side, tile.top(), side, side};
}

void paint(QPainter& painter, const QRect& tile, const QSize& pictureSize, const PresetTileState& state) {
    const QRect picture{tile.topLeft(), pictureSize};
    paintPicture(painter, picture, state);
    paintStar(painter, star(tile, pictureSize), state);
    paintFrame(painter, picture, state);
    const QRect line{tile.left(), picture.bottom() + 1 + titleGap, tile.width(), titleHeight() - titleGap};
    paintTitle(painter, line, state.title, Qt::AlignLeft);
}

void paintNone(QPainter& painter, const QRect& rect, const PresetTileState& state) {
    const auto& theme = Theme::current();
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.window);
    painter.drawRoundedRect(rect, radius::control, radius::control);
    const QRect picture{rect.topLeft() + QPoint{spacing::tiny, spacing::tiny}, nonePictureSize(rect)};
    paintPicture(painter, picture, state);
    paintFrame(painter, rect.adjusted(1, 1, -1, -1), state);
    auto words = rect;
    words.setLeft(picture.right() + spacing::medium);
    words.setRight(rect.right() - spacing::small);
    const auto titleFont = font(TextRole::caption);
    const auto noteFont = font(TextRole::detail);
    const auto titleLine = QFontMetrics{titleFont}.height();
    const auto noteLine = QFontMetrics{noteFont}.height();
    words.setTop(rect.center().y() - (titleLine + noteLine) / 2 + 1);
    words.setHeight(titleLine);
    paintTitle(painter, words, state.title, Qt::AlignLeft);
    words.translate(0, titleLine);
    words.setHeight(noteLine);
    painter.setFont(noteFont);
    painter.setPen(theme.secondaryText);
    painter.drawText(
        words, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
        QFontMetrics{noteFont}.elidedText(Texts::tr("The photo as shot"), Qt::ElideRight, words.width()));
}

void paintHeader(QPainter& painter, const QRect& rect, const Header& header) {
    const auto& theme = Theme::current();
    const auto ink = header.isHovered ? theme.text : theme.secondaryText;
    constexpr int chevron = 12;
    const auto inner = rect.adjusted(spacing::medium, spacing::tiny, -spacing::small, 0);
    paintSymbol(painter, {inner.left() + chevron / 2, inner.center().y() + 1},
                header.isExpanded ? u"chevron.down" : u"chevron.right", chevron, ink);
    const auto headerFont = font(TextRole::section);
    const QFontMetrics letters{headerFont};
    painter.setFont(headerFont);
    painter.setPen(theme.secondaryText);
    painter.drawText(inner, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine, header.count);
    const auto words = inner.adjusted(chevron + spacing::tiny + 2, 0,
                                      -letters.horizontalAdvance(header.count) - spacing::small, 0);
    painter.setPen(ink);
    painter.drawText(words, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     letters.elidedText(header.title, Qt::ElideMiddle, words.width()));
    if (!header.hasKeyboard) return;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen{theme.focusRing, 2});
    painter.drawRoundedRect(QRectF{rect}.adjusted(5, 5, -1, -1), radius::control, radius::control);
}

} // namespace PresetTile

} // namespace kelvara
