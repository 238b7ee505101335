#pragma once

#include <array>
#include <optional>

namespace kelvara {

struct ZoomPoint {
    double x = 0;
    double y = 0;
    friend bool operator==(const ZoomPoint&, const ZoomPoint&) = default;
};
struct ZoomSize {
    double width = 0;
    double height = 0;
    [[nodiscard]] bool isPositive() const { return width > 0 && height > 0; }
    friend bool operator==(const ZoomSize&, const ZoomSize&) = default;
};

/// What the rest of the window is told about a zoom.
struct ZoomState {
    int percent = 100;
    bool isAtFit = true;
    friend bool operator==(const ZoomState&, const ZoomState&) = default;
};

/// Where an image stands in a viewport and how large: the arithmetic of zooming and panning, without a
/// window.
///
/// Magnification 1 is one image pixel on one screen pixel. "Image" points are in image pixels from its top
/// left corner, "view" points in logical pixels from the viewport's. The image is always constrained: on an
/// axis where it is smaller than the viewport it is centred, else it covers the viewport.
class ZoomGeometry {
public:
    static constexpr std::array<double, 11> steps{0.25, 0.33, 0.5, 0.67, 1.0, 1.5, 2.0, 3.0, 4.0, 6.0, 8.0};
    static constexpr double maximum = 8.0;

    /// A zoom to come: the image point `anchor` keeps its place in the view as far as the constraint allows.
    struct Move {
        double magnification = 1;
        ZoomPoint anchor;
    };

    // What is given from outside

    /// A fitted image stays fitted; any other keeps its magnification and the middle of what is seen.
    /// Returns whether the magnification changed.
    bool setViewport(const ZoomSize& logicalPixels);
    /// Screen pixels per logical pixel. A change goes back to fit.
    bool setScale(double scale);
    /// A size other than the present one goes to fit; the same size changes nothing. Returns whether it went
    /// to fit.
    bool setPixelSize(const ZoomSize& imagePixels);
    /// The true size of an image that was shown before under a guessed one: fit stays fit, and any other
    /// magnification and the place in the image are kept.
    void correctPixelSize(const ZoomSize& imagePixels);
    /// Back to fit at once.
    void goToFit() { jump(toFit()); }

    [[nodiscard]] const ZoomSize& pixelSize() const { return m_pixelSize; }
    [[nodiscard]] const ZoomSize& viewport() const { return m_viewport; }
    [[nodiscard]] double scale() const { return m_scale; }

    // State

    /// The magnification on screen, and the one it is moving to.
    [[nodiscard]] double magnification() const { return m_magnification; }
    [[nodiscard]] double target() const { return m_target; }
    [[nodiscard]] bool isAtFit() const { return m_isAtFit; }
    /// The whole image in the viewport, never enlarged; 1 while a size is unknown.
    [[nodiscard]] double fit() const;
    [[nodiscard]] ZoomState state() const;
    [[nodiscard]] bool isPannable() const { return !m_isAtFit; }
    /// Pixels are shown as squares above 100 %.
    [[nodiscard]] bool usesNearestNeighbour() const { return m_magnification > 1.001; }

    /// The image point at the viewport's top left corner; negative where the image is centred.
    [[nodiscard]] const ZoomPoint& origin() const { return m_origin; }
    [[nodiscard]] ZoomPoint toImage(const ZoomPoint& view) const;
    [[nodiscard]] ZoomPoint toView(const ZoomPoint& image) const;
    [[nodiscard]] ZoomPoint viewCentre() const { return {m_viewport.width / 2, m_viewport.height / 2}; }

    // Where commands lead

    [[nodiscard]] Move zoomIn() const;
    [[nodiscard]] Move zoomOut() const;
    [[nodiscard]] Move toFit() const;
    /// Between fit and 100 %, or 100 % and 200 % for an image that fits at 100 %, about a view point; without
    /// one about the middle of the view.
    [[nodiscard]] Move toggled(const std::optional<ZoomPoint>& view = std::nullopt) const;
    /// `delta` in lines of a wheel or, when precise, in logical pixels; positive zooms in.
    [[nodiscard]] Move scrolled(double delta, bool isPrecise, const ZoomPoint& view) const;
    /// A pinch that scales what is seen now by `factor`.
    [[nodiscard]] Move pinched(double factor, const ZoomPoint& view) const;

    // Going there

    /// Makes the move's magnification the target, without showing it yet.
    void aim(double magnification);
    /// Shows a magnification with the image point `anchor` at `view`. The target stays.
    void show(double magnification, const ZoomPoint& anchor, const ZoomPoint& view);
    /// Both at once.
    void jump(const Move& move);
    /// Moves the image with the pointer, by logical pixels.
    void pan(double dx, double dy);

private:
    void constrain();
    [[nodiscard]] double pixelsPerView() const { return m_scale / m_magnification; }

    ZoomSize m_viewport;
    ZoomSize m_pixelSize;
    double m_scale = 1;
    double m_magnification = 1;
    double m_target = 1;
    bool m_isAtFit = true;
    ZoomPoint m_origin;
};

/// The magnification of an animated zoom at `elapsed` seconds: equal ratios take equal time, slowing towards
/// the end, which is `to` exactly.
[[nodiscard]] double animatedMagnification(double from, double to, double elapsed);
inline constexpr double zoomAnimationSeconds = 0.18;

} // namespace kelvara
