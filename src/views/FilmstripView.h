#pragma once

#include "library/LibraryViewModel.h"
#include "views/CellPainter.h"
#include "views/CellThumbnails.h"
#include "views/PhotoCells.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

#include <optional>

namespace kelvara {

/// The photos of the library in a row, moved so that the focused one stays in the middle. Only what is on
/// screen is looked at.
class FilmstripView : public QWidget, public PhotoCells {
    Q_OBJECT

public:
    FilmstripView(LibraryViewModel& library, const ThumbnailSources& thumbnails, QWidget* parent = nullptr);

    [[nodiscard]] bool isLoading() const { return m_thumbnails.isLoading(); }
    void reloadThumbnails() { m_thumbnails.reload(); }
    [[nodiscard]] LibraryViewModel& library() const override { return m_library; }
    [[nodiscard]] QWidget& canvas() override { return *this; }
    [[nodiscard]] QRect cellRect(std::size_t index) const override;
    [[nodiscard]] std::optional<std::size_t> indexAt(const QPoint& point) const override;
    [[nodiscard]] ThumbnailCellState state(std::size_t index) const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private:
    enum class Motion { smooth, atOnce };
    void showFocused(Motion motion);
    void setOffset(double offset);
    void step();
    [[nodiscard]] double constrained(double offset) const;
    [[nodiscard]] IndexRange visibleRange() const;
    void loadVisible();
    void startDrag(const FileURL& url);
    void setHovered(std::optional<std::size_t> index);

    LibraryViewModel& m_library;
    CellThumbnails m_thumbnails;
    CellPainter m_painter;
    double m_offset = 0; ///< Of the view's left edge in the row of all cells.
    double m_target = 0;
    QTimer m_frames;
    QElapsedTimer m_lastFrame;
    IndexRange m_loadedRange;
    std::optional<std::size_t> m_hovered;
    /// Where the left button went down, and on which photo.
    struct Press {
        QPoint point;
        FileURL url;
    };
    std::optional<Press> m_press;
    Subscription m_listSubscription;
    Subscription m_focusSubscription;
    Subscription m_stateSubscription;
};

} // namespace kelvara
