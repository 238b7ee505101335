#include "views/ThumbnailCell.h"

#include "views/RatingStars.h"
#include "views/Symbols.h"
#include "views/Theme.h"

#include <QCoreApplication>
#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace kelvara {

namespace {

using Content = ThumbnailCellState::Content;
using Style = ThumbnailCellState::Style;

constexpr int starSize = 12;
constexpr int ringWidth = 2;
constexpr int markSide = 20;
constexpr int badgePadding = 3;
constexpr int roomForStars = 160; // a cell this wide has stars beside the name
constexpr int roomForWords = 120; // a cell this wide can say why it shows nothing

QString tr(const char* source) { return QCoreApplication::translate("ThumbnailCell", source); }

struct Metrics {
    int tileRadius;
    int pictureMargin;
    int markMargin;
    int badgeMargin;
    int badgeSymbolSide; // in the filmstrip small enough to stay above a picture of usual shape
};
Metrics metrics(Style style) {
    return style == Style::grid ? Metrics{6, 8, 6, 5, 12} : Metrics{4, 3, 3, 2, 10};
}

QColor blend(const QColor& base, const QColor& tint, double share) {
    const auto mix = [share](int a, int b) { return static_cast<int>(std::lround(a + (b - a) * share)); };
    return {mix(base.red(), tint.red()), mix(base.green(), tint.green()), mix(base.blue(), tint.blue())};
}

QColor tileColor(const ThumbnailCellState& state) {
    const auto& theme = Theme::current();
    auto color = theme.placeholder;
    if (state.isHovered) color = blend(color, theme.text, 0.06);
    // A hint only: colour around a photo shifts how its own colours look.
    if (state.isMarked) color = blend(color, theme.mark, theme.isDark() ? 0.11 : 0.14);
    return color;
}

QRect square(const QRect& rect) { return {rect.topLeft(), QSize{rect.width(), rect.width()}}; }

/// Where the picture stands: fitted into the square, never enlarged beyond its own pixels.
QRectF pictureRect(const QRect& rect, const ThumbnailCellState& state, qreal ratio) {
    const auto margin = metrics(state.style).pictureMargin;
    const QRectF area = square(rect).adjusted(margin, margin, -margin, -margin);
    auto size = QSizeF{state.picture.size()} / ratio;
    if (size.width() > area.width() || size.height() > area.height() ||
        std::max(state.picture.width(), state.picture.height()) >= 160) {
        size = size.scaled(area.size(), Qt::KeepAspectRatio);
    }
    // Whole screen pixels keep the edges sharp.
    const auto snapped = [ratio](double value) { return std::round(value * ratio) / ratio; };
    size = {std::max(snapped(size.width()), 1.0), std::max(snapped(size.height()), 1.0)};
    return {snapped(area.center().x() - size.width() / 2), snapped(area.center().y() - size.height() / 2),
            size.width(), size.height()};
}

void paintTile(QPainter& painter, const QRect& rect, const ThumbnailCellState& state) {
    const auto radius = metrics(state.style).tileRadius;
    painter.setPen(Qt::NoPen);
    painter.setBrush(tileColor(state));
    painter.drawRoundedRect(rect, radius, radius);
    if (state.isMarked) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen{blend(tileColor(state), Theme::current().mark, 0.75), 1});
        painter.drawRoundedRect(QRectF{rect}.adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5, radius - 0.5);
    }
}

void paintPicture(QPainter& painter, const QRect& rect, const ThumbnailCellState& state, qreal ratio) {
    const auto target = pictureRect(rect, state, ratio);
    const auto pixels = (target.size() * ratio).toSize();
    auto scaled = state.picture.size() == pixels
                      ? state.picture
                      : state.picture.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    scaled.setDevicePixelRatio(1);
    QBrush brush{scaled};
    brush.setTransform(QTransform::fromTranslate(target.x(), target.y()).scale(1 / ratio, 1 / ratio));
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    const auto radius = state.style == Style::grid ? radius::thumbnail - 1 : 2;
    painter.drawRoundedRect(target, radius, radius);
}

void paintSymbol(QPainter& painter, const QPoint& centre, QStringView name, int size, const QColor& color) {
    const auto pixmap = symbol(name, size, color, painter.device()->devicePixelRatioF());
    painter.drawPixmap(QPoint{centre.x() - size / 2, centre.y() - size / 2}, pixmap);
}

void paintAbsence(QPainter& painter, const QRect& rect, const ThumbnailCellState& state) {
    const auto& theme = Theme::current();
    const auto area = square(rect);
    const auto side = std::clamp(area.width() / 5, 16, 44);
    if (state.content == Content::loading) {
        const bool isVideo = state.kind == MediaKind::video;
        return paintSymbol(painter, area.center(), isVideo ? u"film" : u"photo", side,
                           blend(tileColor(state), theme.text, theme.isDark() ? 0.2 : 0.28));
    }
    const bool hasWords = area.width() >= roomForWords;
    const auto lift = hasWords ? side / 2 : 0;
    paintSymbol(painter, area.center() - QPoint{0, lift}, u"exclamationmark.triangle", side,
                theme.secondaryText);
    if (!hasWords) return;
    painter.setFont(font(TextRole::caption));
    painter.setPen(theme.secondaryText);
    const QRect words{area.left() + spacing::medium, area.center().y() + side / 2,
                      area.width() - 2 * spacing::medium, area.bottom() - area.center().y() - side / 2};
    painter.drawText(words, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, tr("Can't read this file"));
}

/// In a corner that nothing else is in: whether it is a video, whether the photo is edited, and in the grid
/// the extension.
void paintBadge(QPainter& painter, const QRect& rect, const ThumbnailCellState& state) {
    const bool isGrid = state.style == Style::grid;
    const auto badge = isGrid ? state.badge : QString{};
    QStringView symbolName;
    if (state.isEdited) symbolName = u"slider.horizontal.3";
    if (isGrid && state.kind == MediaKind::video && state.content != Content::loading) symbolName = u"film";
    if (badge.isEmpty() && symbolName.isEmpty()) return;
    const auto& theme = Theme::current();
    const auto badgeFont = font(TextRole::badge);
    const QFontMetrics letters{badgeFont};
    const auto symbolSide = symbolName.isEmpty() ? 0 : metrics(state.style).badgeSymbolSide;
    const auto between = symbolName.isEmpty() || badge.isEmpty() ? 0 : badgePadding;
    const auto width = letters.horizontalAdvance(badge) + between + symbolSide + 2 * badgePadding;
    const auto height = isGrid ? letters.height() + 3 : symbolSide + 2;
    const auto margin = metrics(state.style).badgeMargin;
    const QRect pill{rect.right() + 1 - margin - width, rect.top() + margin, width, height};
    // In the tile's colour, so that it is a label on the mount and still readable over a picture.
    auto ground = tileColor(state);
    ground.setAlpha(215);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(pill, 4, 4);
    painter.setFont(badgeFont);
    painter.setPen(theme.secondaryText);
    if (!symbolName.isEmpty())
        paintSymbol(painter, {pill.left() + badgePadding + symbolSide / 2, pill.center().y() + 1}, symbolName,
                    symbolSide, theme.secondaryText);
    painter.drawText(pill.adjusted(badgePadding + symbolSide + between, 0, -badgePadding, 0), Qt::AlignCenter,
                     badge);
}

void paintMark(QPainter& painter, const QRect& rect, const ThumbnailCellState& state) {
    const bool isQuiet = !state.isHovered && !state.isFocused;
    if (!state.isMarked && (isQuiet || state.style == Style::filmstrip)) return;
    const auto& theme = Theme::current();
    const auto side = state.style == Style::grid ? markSide : 14;
    const auto margin = metrics(state.style).markMargin;
    const QRect place{rect.left() + margin, rect.top() + margin, side, side};
    painter.setPen(Qt::NoPen);
    if (state.isMarked) {
        painter.setBrush(theme.onAccent);
        const auto inset = side / 5;
        painter.drawEllipse(place.adjusted(inset, inset, -inset, -inset));
        return paintSymbol(painter, place.topLeft() + QPoint{side / 2, side / 2}, u"checkmark.circle.fill",
                           side, state.isMarkHovered ? blend(theme.mark, theme.text, 0.2) : theme.mark);
    }
    auto ground = theme.window; // the ring lies on the mount, or on a tall picture
    ground.setAlpha(state.isMarkHovered ? 0xf0 : 0xa0);
    painter.setBrush(ground);
    painter.drawEllipse(QRectF{place}.adjusted(1.5, 1.5, -1.5, -1.5));
    paintSymbol(painter, place.topLeft() + QPoint{side / 2, side / 2}, u"circle", side,
                state.isMarkHovered ? theme.text : theme.secondaryText);
}

/// On the mount's lower edge, on a ground of its own for pictures that reach there.
void paintStarsOnPicture(QPainter& painter, const QRect& rect, const ThumbnailCellState& state) {
    const auto size = state.style == Style::grid ? starSize : 9;
    const auto width = RatingStars::width(size, state.rating.rawValue()) + 2 * spacing::tiny;
    const auto area = square(rect);
    const auto lift = state.style == Style::grid ? spacing::tiny : 1;
    const QRect pill{area.left() + (area.width() - width) / 2, area.bottom() + 1 - lift - size - 4, width,
                     size + 4};
    auto ground = tileColor(state);
    ground.setAlpha(215);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(pill, 4, 4);
    RatingStars::paint(painter, pill.topLeft() + QPoint{spacing::tiny, 2}, state.rating, size,
                       Theme::current().star, RatingStars::Empty::hidden);
}

/// As many of the values as there is room for: half a value would be a wrong one.
QString fittedValues(QString line, const QFontMetrics& letters, int width) {
    const auto separator = QStringLiteral(" · ");
    while (letters.horizontalAdvance(line) > width) {
        const auto last = line.lastIndexOf(separator);
        if (last < 0) return {};
        line.truncate(last);
    }
    return line;
}

void paintExposure(QPainter& painter, const QRect& strip, const ThumbnailCellState& state) {
    const auto lineFont = font(TextRole::detail);
    painter.setFont(lineFont);
    painter.setPen(Theme::current().secondaryText);
    painter.drawText(strip, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     fittedValues(state.exposure, QFontMetrics{lineFont}, strip.width()));
}

void paintInfo(QPainter& painter, const QRect& rect, const ThumbnailCellState& state) {
    const auto& theme = Theme::current();
    const auto rated = state.rating.rawValue();
    const bool hasStarsBesideName = state.showsInfo && rect.width() >= roomForStars;
    if (rated > 0 && !hasStarsBesideName) paintStarsOnPicture(painter, rect, state);
    if (!state.showsInfo) return;
    const auto nameFont = font(TextRole::caption);
    const QFontMetrics letters{nameFont};
    const auto margin = spacing::small;
    const QRect strip{rect.left() + margin, rect.top() + rect.width(), rect.width() - 2 * margin,
                      letters.height()};
    const auto starsWidth = hasStarsBesideName ? RatingStars::width(starSize, rated) : 0;
    const auto forName = strip.width() - (starsWidth > 0 ? starsWidth + spacing::tiny : 0);
    painter.setFont(nameFont);
    painter.setPen(theme.text);
    painter.drawText(strip, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     letters.elidedText(state.name, Qt::ElideMiddle, forName));
    paintExposure(painter, strip.translated(0, strip.height()), state);
    if (starsWidth == 0) return;
    RatingStars::paint(painter, {strip.right() + 1 - starsWidth, strip.center().y() - starSize / 2},
                       state.rating, starSize, theme.star, RatingStars::Empty::hidden);
}

} // namespace

bool ThumbnailCellState::looksLike(const ThumbnailCellState& other) const {
    return picture.cacheKey() == other.picture.cacheKey() && content == other.content &&
           style == other.style && rating == other.rating && showsInfo == other.showsInfo &&
           isEdited == other.isEdited && isMarked == other.isMarked && isFocused == other.isFocused &&
           isHovered == other.isHovered && isMarkHovered == other.isMarkHovered && name == other.name &&
           exposure == other.exposure;
}

namespace ThumbnailCell {

int infoHeight() { return 2 * QFontMetrics{font(TextRole::caption)}.height() + spacing::tiny + 2; }

QRect markButton(const QRect& rect, Style style) {
    const auto margin = metrics(style).markMargin;
    // A little larger than it looks.
    return {rect.left(), rect.top(), markSide + 2 * margin, markSide + 2 * margin};
}

QImage render(const QSize& size, const ThumbnailCellState& state, qreal devicePixelRatio) {
    QImage image{(QSizeF{size} * devicePixelRatio).toSize(), QImage::Format_ARGB32_Premultiplied};
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::transparent);
    QPainter painter{&image};
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect rect{{}, size};
    paintTile(painter, rect, state);
    if (state.content == Content::picture) {
        paintPicture(painter, rect, state, devicePixelRatio);
    } else {
        paintAbsence(painter, rect, state);
    }
    paintBadge(painter, rect, state);
    paintInfo(painter, rect, state);
    paintMark(painter, rect, state);
    return image;
}

void paintRoughly(QPainter& painter, const QRect& rect, const ThumbnailCellState& state) {
    const auto ratio = painter.device()->devicePixelRatioF();
    painter.fillRect(rect, tileColor(state));
    if (state.content == Content::picture) painter.drawImage(pictureRect(rect, state, ratio), state.picture);
}

void paintFocusRing(QPainter& painter, const QRect& rect) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen{Theme::current().accent, ringWidth});
    painter.drawRoundedRect(QRectF{rect}.adjusted(-2, -2, 2, 2), 8, 8);
    painter.restore();
}

QString accessibleValue(bool isMarked, Rating rating, bool isEdited) {
    QStringList parts;
    if (isMarked) parts.append(tr("Marked"));
    if (rating != Rating{}) parts.append(RatingStars::text(rating));
    if (isEdited) parts.append(tr("Edited"));
    return parts.join(QStringLiteral(", "));
}

QString help(const QString& name, bool isEdited) {
    return isEdited ? name + QStringLiteral(" · ") + tr("Edited") : name;
}

QString unreadableText(const QString& name) {
    return tr("Can't read %1. The file may be damaged or in an unsupported format.").arg(name);
}

} // namespace ThumbnailCell

} // namespace kelvara
