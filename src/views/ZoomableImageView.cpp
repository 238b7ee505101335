#include "views/ZoomableImageView.h"

#include "views/ApplicationStyle.h"
#include "views/ImageSampling.h"
#include "views/Theme.h"

#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPainter>
#include <QScreen>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace kelvara {

namespace {

constexpr double wheelNotch = 120; // Qt's eighths of a degree

ZoomPoint point(const QPointF& position) { return {position.x(), position.y()}; }

/// How far a wheel event scrolls vertically, away from the user being positive, and whether in pixels.
struct Scroll {
    double delta = 0;
    bool isPrecise = false;
};
Scroll verticalScroll(const QWheelEvent& event) {
    // With Alt held some platforms turn the wheel's axis.
    const auto vertical = [&](const QPoint& delta) {
        return delta.y() == 0 && event.modifiers().testFlag(Qt::AltModifier) ? delta.x() : delta.y();
    };
    const double direction = event.inverted() ? -1 : 1;
    if (const auto pixels = vertical(event.pixelDelta()); pixels != 0) return {direction * pixels, true};
    return {direction * vertical(event.angleDelta()) / wheelNotch, false};
}

} // namespace

ZoomableImageView::ZoomableImageView(QWidget* parent) : QWidget{parent} {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(1, 1);
    setAccessibleName(tr("Photo"));
    m_frames.setTimerType(Qt::PreciseTimer);
    connect(&m_frames, &QTimer::timeout, this, &ZoomableImageView::stepAnimation);
}

void ZoomableImageView::display(std::shared_ptr<const ImagePyramid> image, const ZoomSize& pixelSize,
                                SizeIs sizeIs) {
    m_image = std::move(image);
    if (m_sizeIs != SizeIs::known && sizeIs == SizeIs::known) {
        if (pixelSize != m_geometry.pixelSize()) stopAnimation();
        m_geometry.correctPixelSize(pixelSize);
    } else if (m_geometry.setPixelSize(pixelSize)) {
        stopAnimation();
    }
    m_sizeIs = sizeIs;
    didChange();
}

void ZoomableImageView::clear() {
    if (m_image == nullptr) return;
    stopAnimation();
    m_image = nullptr;
    m_dragged.reset();
    didChange();
}

void ZoomableImageView::resetZoom() {
    stopAnimation();
    m_geometry.goToFit();
    didChange();
}

void ZoomableImageView::showClipping(const Clipping& clipping) {
    if (std::exchange(m_clipping, clipping) != clipping) didChange();
}

void ZoomableImageView::perform(const ZoomRequest& request) {
    if (request.serial == m_lastSerial) return;
    m_lastSerial = request.serial;
    perform(request.command);
}

void ZoomableImageView::perform(ZoomRequest::Command command) {
    if (m_image == nullptr) return;
    switch (command) {
    case ZoomRequest::Command::toggle:
        return animate(m_geometry.toggled());
    case ZoomRequest::Command::zoomIn:
        return animate(m_geometry.zoomIn());
    case ZoomRequest::Command::zoomOut:
        return animate(m_geometry.zoomOut());
    case ZoomRequest::Command::fit:
        return animate(m_geometry.toFit());
    }
}

std::optional<ZoomState> ZoomableImageView::zoom() const {
    if (m_image == nullptr || m_sizeIs == SizeIs::unknown) return std::nullopt;
    return m_geometry.state();
}

void ZoomableImageView::animate(const ZoomGeometry::Move& move) {
    if (!isVisible() || !allowsMotion(*this)) return jump(move);
    Animation animation{
        m_geometry.magnification(), move.magnification, move.anchor, m_geometry.toView(move.anchor), {}};
    animation.clock.start();
    m_animation = animation;
    m_geometry.aim(move.magnification);
    const auto rate = screen() ? std::max(screen()->refreshRate(), 30.0) : 60.0;
    if (!m_frames.isActive()) m_frames.start(std::max(1, static_cast<int>(1000 / rate)));
    didChange();
}

void ZoomableImageView::jump(const ZoomGeometry::Move& move) {
    stopAnimation();
    m_geometry.jump(move);
    didChange();
}

void ZoomableImageView::stepAnimation() {
    if (!m_animation) return m_frames.stop();
    const auto seconds = static_cast<double>(m_animation->clock.nsecsElapsed()) / 1e9;
    const auto magnification = animatedMagnification(m_animation->from, m_animation->to, seconds);
    m_geometry.show(magnification, m_animation->anchor, m_animation->place);
    if (seconds >= zoomAnimationSeconds) stopAnimation();
    didChange();
}

void ZoomableImageView::stopAnimation() {
    m_animation.reset();
    m_frames.stop();
}

void ZoomableImageView::didChange() {
    m_isFrameCurrent = false;
    if (m_dragged) {
        setCursor(Qt::ClosedHandCursor);
    } else if (m_image && m_geometry.isPannable()) {
        setCursor(Qt::OpenHandCursor);
    } else {
        unsetCursor();
    }
    report();
    update();
}

void ZoomableImageView::report() {
    if (m_reported == zoom()) return;
    m_reported = zoom();
    QMetaObject::invokeMethod(this, &ZoomableImageView::zoomChanged, Qt::QueuedConnection);
}

void ZoomableImageView::refreshScale() {
    if (m_geometry.setScale(devicePixelRatioF())) {
        stopAnimation();
        didChange();
    }
}

bool ZoomableImageView::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::NativeGesture:
        return pinch(event);
    case QEvent::ScreenChangeInternal:
    case QEvent::Show:
        refreshScale();
        break;
    case QEvent::PaletteChange:
        m_isFrameCurrent = false;
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

bool ZoomableImageView::pinch(QEvent* event) {
    const auto& gesture = *static_cast<QNativeGestureEvent*>(event);
    if (m_image == nullptr) return false;
    switch (gesture.gestureType()) {
    case Qt::BeginNativeGesture:
    case Qt::EndNativeGesture:
        event->accept();
        return true;
    case Qt::ZoomNativeGesture:
        jump(m_geometry.pinched(1 + gesture.value(), point(gesture.position())));
        event->accept();
        return true;
    case Qt::SmartZoomNativeGesture:
        animate(m_geometry.toggled(point(gesture.position())));
        event->accept();
        return true;
    default:
        return false;
    }
}

void ZoomableImageView::resizeEvent(QResizeEvent*) {
    refreshScale();
    const auto before = m_geometry.isAtFit();
    if (m_geometry.setViewport({static_cast<double>(width()), static_cast<double>(height())}) || before) {
        stopAnimation();
    }
    didChange();
}

void ZoomableImageView::renderFrame() {
    const auto scale = devicePixelRatioF();
    const QSize size{static_cast<int>(std::ceil(width() * scale)),
                     static_cast<int>(std::ceil(height() * scale))};
    if (m_frame.size() != size) {
        m_frame = QImage{size, QImage::Format_RGB32};
        m_isFrameCurrent = false;
    }
    if (m_isFrameCurrent) return;
    m_isFrameCurrent = true;
    const auto background = Theme::current().canvas.rgb();
    if (m_image == nullptr) return m_frame.fill(background);
    // A stand-in of fewer pixels stays smooth; its own pixels mean nothing.
    const bool isStandIn = m_image->image().width() < m_geometry.pixelSize().width;
    drawImage(m_frame, *m_image,
              {m_geometry.origin(), m_geometry.magnification(), m_geometry.pixelSize(),
               m_geometry.usesNearestNeighbour() && !isStandIn},
              background);
    paintClipping(m_frame, m_clipping);
}

void ZoomableImageView::paintEvent(QPaintEvent* event) {
    refreshScale();
    renderFrame();
    QPainter painter{this};
    painter.setClipRegion(event->region());
    // In screen pixels, on whole ones: at a fractional scale a widget may begin between two of them.
    const auto transform = painter.deviceTransform();
    const auto shiftX = std::round(transform.dx()) - transform.dx();
    const auto shiftY = std::round(transform.dy()) - transform.dy();
    const auto scale = devicePixelRatioF();
    painter.scale(1 / scale, 1 / scale);
    painter.drawImage(QPointF{shiftX, shiftY}, m_frame);
}

void ZoomableImageView::wheelEvent(QWheelEvent* event) {
    if (m_image == nullptr) return event->ignore();
    if (event->modifiers().testFlag(Qt::ControlModifier) || event->modifiers().testFlag(Qt::AltModifier)) {
        const auto scroll = verticalScroll(*event);
        if (scroll.delta != 0)
            jump(m_geometry.scrolled(scroll.delta, scroll.isPrecise, point(event->position())));
        return event->accept();
    }
    if (!m_geometry.isPannable()) return event->ignore();
    constexpr double pixelsPerNotch = 60;
    const auto moved = event->pixelDelta().isNull()
                           ? QPointF{event->angleDelta()} * (pixelsPerNotch / wheelNotch)
                           : QPointF{event->pixelDelta()};
    stopAnimation();
    m_geometry.jump({m_geometry.target(), m_geometry.toImage(m_geometry.viewCentre())});
    m_geometry.pan(moved.x(), moved.y());
    didChange();
    event->accept();
}

void ZoomableImageView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return QWidget::mousePressEvent(event);
    m_awaitsDoubleClickEnd = false;
    if (m_image && m_geometry.isPannable()) {
        m_dragged = event->position();
        didChange();
    }
}

void ZoomableImageView::mouseMoveEvent(QMouseEvent* event) {
    if (!m_dragged) return;
    const auto moved = event->position() - *m_dragged;
    m_dragged = event->position();
    if (moved.isNull()) return;
    m_awaitsDoubleClickEnd = false;
    m_geometry.pan(moved.x(), moved.y());
    // A drag during a zoom takes hold of what is under the pointer now.
    if (m_animation) m_animation->place = m_geometry.toView(m_animation->anchor);
    didChange();
}

void ZoomableImageView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return QWidget::mouseReleaseEvent(event);
    m_dragged.reset();
    if (std::exchange(m_awaitsDoubleClickEnd, false) && m_image) {
        return animate(m_geometry.toggled(point(event->position())));
    }
    didChange();
}

void ZoomableImageView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    mousePressEvent(event);
    m_awaitsDoubleClickEnd = true;
}

} // namespace kelvara
