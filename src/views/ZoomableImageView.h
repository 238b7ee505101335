#pragma once

#include "library/LibraryTypes.h"
#include "views/Clipping.h"
#include "views/ImagePyramid.h"
#include "views/ZoomGeometry.h"

#include <QElapsedTimer>
#include <QImage>
#include <QTimer>
#include <QWidget>

#include <memory>
#include <optional>

namespace kelvara {

/// Shows one picture and lets the user zoom and pan it: fit, true 100 %, steps, wheel with Ctrl or Alt,
/// pinch, double-click, drag. Draws only what is visible, so that its cost doesn't depend on the picture's
/// size.
class ZoomableImageView : public QWidget {
    Q_OBJECT

public:
    /// Whether the size a picture is shown at is its own or one that will be corrected: the one it most
    /// likely has, or any that will do.
    enum class SizeIs { known, likely, unknown };

    explicit ZoomableImageView(QWidget* parent = nullptr);

    /// Shows `image` as if it had `pixelSize`, which a thumbnail has not. A picture of the same size, or the
    /// known size after another one, keeps zoom and position; any other goes to fit.
    void display(std::shared_ptr<const ImagePyramid> image, const ZoomSize& pixelSize, SizeIs sizeIs);
    /// Shows nothing until the next picture, which finds zoom and position as they were.
    void clear();
    /// The present and the next picture begin at fit.
    void resetZoom();
    [[nodiscard]] const std::shared_ptr<const ImagePyramid>& image() const { return m_image; }
    [[nodiscard]] const ZoomGeometry& geometry() const { return m_geometry; }

    /// Which clipped areas are painted over, in what is on screen.
    void showClipping(const Clipping& clipping);

    /// Performs a request that was not performed before, told by its serial.
    void perform(const ZoomRequest& request);
    void perform(ZoomRequest::Command command);
    /// Where the zoom is going; empty while the picture's size is unknown.
    [[nodiscard]] std::optional<ZoomState> zoom() const;

signals:
    /// Sent after the event that changed the zoom, once per change of `zoom()`.
    void zoomChanged();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    struct Animation {
        double from = 1;
        double to = 1;
        ZoomPoint anchor; ///< Image point,
        ZoomPoint place;  ///< and where in the view it stays.
        QElapsedTimer clock;
    };

    void animate(const ZoomGeometry::Move& move);
    void jump(const ZoomGeometry::Move& move);
    void stepAnimation();
    void stopAnimation();
    void didChange();
    void report();
    void refreshScale();
    void renderFrame();
    bool pinch(QEvent* event);

    ZoomGeometry m_geometry;
    SizeIs m_sizeIs = SizeIs::known;
    std::shared_ptr<const ImagePyramid> m_image;
    QImage m_frame; // what the view shows, in screen pixels
    bool m_isFrameCurrent = false;
    Clipping m_clipping;
    std::optional<Animation> m_animation;
    QTimer m_frames;
    int m_lastSerial = 0;
    std::optional<std::optional<ZoomState>> m_reported;
    std::optional<QPointF> m_dragged;
    bool m_awaitsDoubleClickEnd = false;
};

} // namespace kelvara
