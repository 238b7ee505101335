#pragma once

#include "model/PhotoItem.h"
#include "views/CellThumbnails.h"

#include <QWidget>

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace kelvara {

/// One photo of a `DeletePreviewStrip`: a square cut out of its thumbnail, or a symbol until there is one.
class DeletePreviewTile : public QWidget {
    Q_OBJECT

public:
    DeletePreviewTile(const PhotoItem& item, int side, QWidget* parent);
    [[nodiscard]] const FileURL& url() const { return m_url; }
    /// Null while there is none.
    [[nodiscard]] const QImage& picture() const { return m_picture; }
    void setPicture(const QImage& picture);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    FileURL m_url;
    QString m_symbolName;
    QImage m_picture;
};

/// The first few of the photos that are about to go, and how many more there are.
class DeletePreviewStrip : public QWidget {
    Q_OBJECT

public:
    static constexpr std::size_t maximumTiles = 6;

    /// Without `thumbnails` the tiles keep their symbols.
    DeletePreviewStrip(std::span<const PhotoItem> items, const std::optional<ThumbnailSources>& thumbnails,
                       QWidget* parent = nullptr);
    /// Whether a picture is still to come.
    [[nodiscard]] bool isLoading() const { return m_thumbnails && m_thumbnails->isLoading(); }

private:
    void refresh();

    std::vector<DeletePreviewTile*> m_tiles;
    std::unique_ptr<CellThumbnails> m_thumbnails;
};

} // namespace kelvara
