#include "views/ZoomGeometry.h"

#include <algorithm>
#include <cmath>

namespace kelvara {

namespace {

constexpr double wheelLineRate = 0.15;
constexpr double preciseRate = 0.01;
constexpr double fitTolerance = 0.002;
constexpr double stepTolerance = 0.001;

double constrainedOrigin(double origin, double visible, double whole) {
    if (whole <= visible) return (whole - visible) / 2;
    return std::clamp(origin, 0.0, whole - visible);
}

} // namespace

double ZoomGeometry::fit() const {
    if (!m_viewport.isPositive() || !m_pixelSize.isPositive()) return 1;
    const auto inWidth = m_viewport.width * m_scale / m_pixelSize.width;
    const auto inHeight = m_viewport.height * m_scale / m_pixelSize.height;
    return std::min({inWidth, inHeight, 1.0});
}

ZoomState ZoomGeometry::state() const { return {static_cast<int>(std::lround(m_target * 100)), m_isAtFit}; }

ZoomPoint ZoomGeometry::toImage(const ZoomPoint& view) const {
    return {m_origin.x + view.x * pixelsPerView(), m_origin.y + view.y * pixelsPerView()};
}

ZoomPoint ZoomGeometry::toView(const ZoomPoint& image) const {
    return {(image.x - m_origin.x) / pixelsPerView(), (image.y - m_origin.y) / pixelsPerView()};
}

bool ZoomGeometry::setViewport(const ZoomSize& logicalPixels) {
    const auto before = m_magnification;
    const auto centre = toImage(viewCentre());
    m_viewport = logicalPixels;
    if (m_isAtFit) {
        goToFit();
    } else {
        show(m_magnification, centre, viewCentre());
    }
    return m_magnification != before;
}

bool ZoomGeometry::setScale(double scale) {
    if (scale == m_scale) return false;
    m_scale = scale;
    goToFit();
    return true;
}

bool ZoomGeometry::setPixelSize(const ZoomSize& imagePixels) {
    if (!imagePixels.isPositive() || imagePixels == m_pixelSize) return false;
    m_pixelSize = imagePixels;
    goToFit();
    return true;
}

void ZoomGeometry::correctPixelSize(const ZoomSize& imagePixels) {
    if (!imagePixels.isPositive() || imagePixels == m_pixelSize) return;
    if (m_isAtFit || !m_pixelSize.isPositive()) {
        setPixelSize(imagePixels);
        return;
    }
    const auto centre = toImage(viewCentre());
    const auto magnification = m_target;
    const ZoomPoint corrected{centre.x * imagePixels.width / m_pixelSize.width,
                              centre.y * imagePixels.height / m_pixelSize.height};
    m_pixelSize = imagePixels;
    aim(std::max(magnification, fit()));
    show(m_target, corrected, viewCentre());
}

ZoomGeometry::Move ZoomGeometry::zoomIn() const {
    const auto step = std::find_if(steps.begin(), steps.end(),
                                   [this](double candidate) { return candidate > m_target + stepTolerance; });
    return {step == steps.end() ? maximum : *step, toImage(viewCentre())};
}

ZoomGeometry::Move ZoomGeometry::zoomOut() const {
    const auto lowest = fit() + stepTolerance;
    const auto step = std::find_if(steps.rbegin(), steps.rend(), [&](double candidate) {
        return candidate < m_target - stepTolerance && candidate > lowest;
    });
    return step == steps.rend() ? toFit() : Move{*step, toImage(viewCentre())};
}

ZoomGeometry::Move ZoomGeometry::toFit() const {
    return {fit(), {m_pixelSize.width / 2, m_pixelSize.height / 2}};
}

ZoomGeometry::Move ZoomGeometry::toggled(const std::optional<ZoomPoint>& view) const {
    const auto anchor = toImage(view.value_or(viewCentre()));
    if (m_target < 0.999) return {1, anchor};
    if (!m_isAtFit) return toFit();
    return {2, anchor};
}

ZoomGeometry::Move ZoomGeometry::scrolled(double delta, bool isPrecise, const ZoomPoint& view) const {
    const auto wanted = m_target * std::exp(delta * (isPrecise ? preciseRate : wheelLineRate));
    return {std::clamp(wanted, fit(), maximum), toImage(view)};
}

ZoomGeometry::Move ZoomGeometry::pinched(double factor, const ZoomPoint& view) const {
    return {std::clamp(m_magnification * factor, fit(), maximum), toImage(view)};
}

void ZoomGeometry::aim(double magnification) {
    m_isAtFit = std::abs(magnification - fit()) < fitTolerance;
    m_target = magnification;
}

void ZoomGeometry::show(double magnification, const ZoomPoint& anchor, const ZoomPoint& view) {
    m_magnification = magnification;
    m_origin = {anchor.x - view.x * pixelsPerView(), anchor.y - view.y * pixelsPerView()};
    constrain();
}

void ZoomGeometry::jump(const Move& move) {
    const auto view = toView(move.anchor);
    aim(move.magnification);
    show(move.magnification, move.anchor, view);
}

void ZoomGeometry::pan(double dx, double dy) {
    m_origin.x -= dx * pixelsPerView();
    m_origin.y -= dy * pixelsPerView();
    constrain();
}

void ZoomGeometry::constrain() {
    const auto visible = pixelsPerView();
    m_origin.x = constrainedOrigin(m_origin.x, m_viewport.width * visible, m_pixelSize.width);
    m_origin.y = constrainedOrigin(m_origin.y, m_viewport.height * visible, m_pixelSize.height);
}

double animatedMagnification(double from, double to, double elapsed) {
    const auto t = std::min(std::max(elapsed, 0.0) / zoomAnimationSeconds, 1.0);
    if (t >= 1) return to;
    const auto eased = 1 - std::pow(1 - t, 3);
    return from * std::pow(to / from, eased);
}

} // namespace kelvara
