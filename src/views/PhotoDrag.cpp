#include "views/PhotoDrag.h"

#include "views/LocalURL.h"
#include "views/Symbols.h"
#include "views/Text.h"

#include <QDrag>
#include <QImage>
#include <QMimeData>
#include <QPainter>
#include <QPainterPath>
#include <QWidget>

#include <algorithm>

namespace kelvara {

namespace {

constexpr int longestSide = 112; // logical pixels
constexpr int badgeHeight = 22;
constexpr int sheetStep = 4; // by which each photo of the pile looks out below
constexpr std::size_t mostSheets = 3;
constexpr qreal opacity = 0.92; // what lies below is where the photos go

QSize pictureSize(const QImage& thumbnail) {
    const QSize room{longestSide, longestSide};
    return thumbnail.isNull() ? room * 2 / 3 : thumbnail.size().scaled(room, Qt::KeepAspectRatio);
}

void paintSheet(QPainter& painter, const QRect& rect, const QColor& color) {
    painter.setPen(QPen{Theme::current().border, 1});
    painter.setBrush(color);
    painter.drawRoundedRect(QRectF{rect}.adjusted(0.5, 0.5, -0.5, -0.5), radius::thumbnail,
                            radius::thumbnail);
}

void paintPhoto(QPainter& painter, const QRect& rect, const QImage& thumbnail) {
    if (thumbnail.isNull()) {
        paintSheet(painter, rect, Theme::current().placeholder);
        constexpr int side = 28;
        const auto ratio = painter.device()->devicePixelRatioF();
        painter.drawPixmap(rect.center() - QPoint{side / 2, side / 2},
                           symbol(u"photo", side, Theme::current().secondaryText, ratio));
        return;
    }
    QPainterPath outline;
    outline.addRoundedRect(rect, radius::thumbnail, radius::thumbnail);
    painter.save();
    painter.setClipPath(outline);
    const auto pixels = rect.size() * painter.device()->devicePixelRatioF();
    painter.drawImage(rect, thumbnail.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    painter.restore();
}

/// Around the corner of the picture.
void paintBadge(QPainter& painter, const QPoint& center, const QString& count) {
    const auto font = kelvara::font(TextRole::emphasis);
    const auto width =
        std::max(QFontMetrics{font}.horizontalAdvance(count) + 2 * spacing::small, badgeHeight);
    const QRect rect{center.x() - width, center.y() - badgeHeight / 2, width + badgeHeight / 2, badgeHeight};
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::current().accentFill);
    painter.drawRoundedRect(rect, badgeHeight / 2.0, badgeHeight / 2.0);
    painter.setPen(Theme::current().onAccent);
    painter.setFont(font);
    painter.drawText(rect, Qt::AlignCenter, count);
}

} // namespace

QPixmap dragPicture(const QImage& thumbnail, std::size_t count, qreal devicePixelRatio) {
    const auto below = static_cast<int>(std::min(count, mostSheets)) - 1;
    const QRect top{{0, badgeHeight / 2}, pictureSize(thumbnail)};
    const QSize size{top.width() + badgeHeight / 2, top.bottom() + 1 + below * sheetStep};
    QPixmap picture{size * devicePixelRatio};
    picture.setDevicePixelRatio(devicePixelRatio);
    picture.fill(Qt::transparent);
    QPainter painter{&picture};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(opacity);
    for (int depth = below; depth > 0; --depth) {
        const auto inset = depth * sheetStep;
        paintSheet(painter, top.adjusted(inset, inset, -inset, inset), Theme::current().raised);
    }
    paintPhoto(painter, top, thumbnail);
    painter.setOpacity(1);
    if (count > 1) paintBadge(painter, top.topRight(), countText(static_cast<std::int64_t>(count)));
    return picture;
}

void dragPhotos(QWidget& source, const std::vector<PhotoItem>& photos, const QImage& thumbnail) {
    QList<QUrl> urls;
    for (const auto& photo : photos) urls.append(toQUrl(photo.url));
    auto* files = new QMimeData;
    files->setUrls(urls);
    const auto picture = dragPicture(thumbnail, photos.size(), source.devicePixelRatioF());
    auto* drag = new QDrag{&source};
    drag->setMimeData(files);
    drag->setPixmap(picture);
    drag->setHotSpot(QRect{QPoint{}, picture.deviceIndependentSize().toSize()}.center());
    drag->exec(Qt::CopyAction);
}

} // namespace kelvara
