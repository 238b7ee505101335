#pragma once

#include "library/LibraryViewModel.h"
#include "views/CellExposures.h"
#include "views/CellPainter.h"
#include "views/CellThumbnails.h"
#include "views/GridLayout.h"
#include "views/PhotoCells.h"

#include <QAbstractScrollArea>
#include <QTimer>

#include <optional>

class QHelpEvent;

namespace kelvara {

class Preferences;

/// The photos of the library as a grid of thumbnails. Nothing but the visible cells is looked at or painted,
/// so that 100,000 photos scroll as 100 do.
class PhotoGridView : public QAbstractScrollArea, public PhotoCells {
    Q_OBJECT

public:
    /// Everything outlives it.
    PhotoGridView(LibraryViewModel& library, const ThumbnailSources& thumbnails, MetadataService& metadata,
                  Preferences& preferences, QWidget* parent = nullptr);
    ~PhotoGridView() override;

    /// The side of a cell, in logical pixels. What the user looks at stays in place.
    void setThumbnailSize(double points);
    /// Whether a visible thumbnail or line of text is still to come.
    [[nodiscard]] bool isLoading() const { return m_thumbnails.isLoading() || m_exposures.isLoading(); }
    /// The pictures in memory are no longer right, as when the screen's colours changed.
    void reloadThumbnails() { m_thumbnails.reload(); }
    /// Preferences that it reads have changed.
    void readPreferences();

    [[nodiscard]] const GridLayout& gridLayout() const { return m_layout; }
    [[nodiscard]] IndexRange visibleRange() const;
    [[nodiscard]] LibraryViewModel& library() const override { return m_library; }
    [[nodiscard]] QWidget& canvas() override { return *viewport(); }
    [[nodiscard]] QRect cellRect(std::size_t index) const override;
    [[nodiscard]] std::optional<std::size_t> indexAt(const QPoint& viewportPoint) const override;
    [[nodiscard]] ThumbnailCellState state(std::size_t index) const override;

signals:
    /// The menu of the focused photo is wanted at this point of the screen.
    void photoMenuRequested(const QPoint& screenPoint);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    /// An item and how far below the viewport's top its cell begins: what a new layout keeps in place.
    struct Anchor {
        std::size_t index = 0;
        int offset = 0;
    };

    void observeLibrary();
    [[nodiscard]] std::optional<Anchor> anchor() const;
    [[nodiscard]] std::optional<Anchor> anchor(const QSize& shown) const;
    void relayout(const std::optional<Anchor>& anchor);
    void showFocused();
    void loadVisible();
    void prefetch();
    [[nodiscard]] int top() const;
    [[nodiscard]] int pixelSize() const;
    void updateCell(const FileURL& url);
    void hover(const QPoint& viewportPoint);
    void unhover();
    [[nodiscard]] bool isOnMark(std::size_t index, const QPoint& viewportPoint) const;
    void moveByRows(int rows);
    void startDrag(std::size_t index);
    bool showToolTip(QHelpEvent& event);

    LibraryViewModel& m_library;
    Preferences& m_preferences;
    ThumbnailService& m_service;
    CellThumbnails m_thumbnails;
    CellExposures m_exposures;
    CellPainter m_painter;
    GridLayout m_layout;
    int m_side;
    bool m_showsInfo = true;
    IndexRange m_loadedRange;
    QTimer m_settled;
    std::optional<std::size_t> m_hovered;
    bool m_isMarkHovered = false;
    /// Where the left button went down, on which photo, and whether on its mark button.
    struct Press {
        QPoint point;
        FileURL url;
        bool isOnMark = false;
    };
    std::optional<Press> m_press;
    Subscription m_layoutSubscription;
    Subscription m_focusSubscription;
    Subscription m_stateSubscription;
    Subscription m_keySubscription;
};

} // namespace kelvara
