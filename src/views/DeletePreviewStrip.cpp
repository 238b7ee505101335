#include "views/DeletePreviewStrip.h"

#include "views/Controls.h"
#include "views/Symbols.h"
#include "views/Text.h"

#include <QBoxLayout>
#include <QPainter>

namespace kelvara {

namespace {

// Six and a number fill the width of a sheet.
constexpr int tileSide = 56;
constexpr int onlyTileSide = 120;
constexpr int symbolShare = 3; // of the side

/// The middle of a picture, as large a square as it has.
QRectF middleSquare(const QImage& picture) {
    QRectF square{0, 0, 0, 0};
    const auto side = std::min(picture.width(), picture.height());
    square.setSize(QSizeF(side, side));
    square.moveCenter(QRectF{picture.rect()}.center());
    return square;
}

} // namespace

DeletePreviewTile::DeletePreviewTile(const PhotoItem& item, int side, QWidget* parent)
    : QWidget{parent}, m_url{item.url}, m_symbolName{item.kind() == MediaKind::video
                                                         ? QStringLiteral("film")
                                                         : QStringLiteral("photo")} {
    setFixedSize(side, side);
    setToolTip(nameText(item.url));
    setAccessibleName(nameText(item.url));
}

void DeletePreviewTile::setPicture(const QImage& picture) {
    m_picture = picture;
    update();
}

void DeletePreviewTile::paintEvent(QPaintEvent*) {
    const auto& theme = Theme::current();
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (m_picture.isNull()) {
        painter.setBrush(theme.field);
        painter.drawRoundedRect(rect(), radius::thumbnail, radius::thumbnail);
        const auto side = width() / symbolShare;
        painter.drawPixmap((width() - side) / 2, (height() - side) / 2,
                           symbol(m_symbolName, side, theme.secondaryText, devicePixelRatioF()));
        return;
    }
    const auto pixels = (QSizeF{size()} * devicePixelRatioF()).toSize();
    auto square = m_picture.copy(middleSquare(m_picture).toRect())
                      .scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    square.setDevicePixelRatio(devicePixelRatioF());
    painter.setBrush(QBrush{square});
    painter.drawRoundedRect(rect(), radius::thumbnail, radius::thumbnail);
}

DeletePreviewStrip::DeletePreviewStrip(std::span<const PhotoItem> items,
                                       const std::optional<ThumbnailSources>& thumbnails, QWidget* parent)
    : QWidget{parent} {
    const auto count = std::min(items.size(), maximumTiles);
    const auto side = count == 1 ? onlyTileSide : tileSide;
    auto* row = new QHBoxLayout{this};
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing::small);
    std::vector<FileURL> urls;
    for (const auto& item : items.first(count)) {
        m_tiles.push_back(new DeletePreviewTile{item, side, this});
        row->addWidget(m_tiles.back());
        urls.push_back(item.url);
    }
    if (items.size() > count) {
        const auto others = countText(static_cast<std::int64_t>(items.size() - count));
        row->addWidget(makeLabel(TextRole::emphasis, Tone::quiet, this, QStringLiteral("+") + others));
    }
    row->addStretch(1);
    if (!thumbnails) return;
    m_thumbnails = std::make_unique<CellThumbnails>(*thumbnails, [this](const auto&) { refresh(); });
    m_thumbnails->show(urls, static_cast<int>(side * devicePixelRatioF()));
    refresh();
}

void DeletePreviewStrip::refresh() {
    for (auto* tile : m_tiles) tile->setPicture((*m_thumbnails)[tile->url()].picture);
}

} // namespace kelvara
