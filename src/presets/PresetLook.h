#pragma once

#include "presets/PresetValue.h"

#include <array>
#include <optional>
#include <vector>

namespace kelvara {

/// A colour or a gain: red, green, blue.
using RGB = std::array<double, 3>;

/// What a preset's settings do to a picture, as numbers: a function from colour to colour, and the amounts of
/// the effects that need a pixel's neighbours. An approximation of a raw developer's result.
///
/// Colours are sRGB-encoded, 0 to 1. A value; any thread.
struct PresetLook {
    static constexpr std::size_t bandCount = 8;
    /// A number each for red, orange, yellow, green, aqua, blue, purple and magenta.
    using Bands = std::array<double, bandCount>;

    struct Vignette {
        double amount = 0; ///< Negative darkens the corners.
        double midpoint = 0.5;
        double feather = 0.5;
        friend bool operator==(const Vignette&, const Vignette&) = default;
    };
    struct Grain {
        double amount = 0; ///< Above 0.
        double size = 0.25;
        friend bool operator==(const Grain&, const Grain&) = default;
    };
    struct ParametricCurve {
        struct Zone {
            double lower = 0;
            double upper = 0;
            double amount = 0;
        };
        std::vector<Zone> zones;

        ParametricCurve() = default;
        explicit ParametricCurve(const PresetSettings& settings);
        [[nodiscard]] double operator()(double x) const;
    };
    /// A natural cubic spline through control points, constant outside them.
    struct PointCurve {
        std::vector<double> xs; ///< Ascending, no two equal.
        std::vector<double> ys;
        std::vector<double> m; ///< Second derivatives at the points.

        /// Empty for fewer than two numbers. `values` are x, y pairs from 0 to 255.
        static std::optional<PointCurve> through(const std::vector<double>& values);
        [[nodiscard]] double operator()(double x) const;
    };
    enum class Range { shadows, midtones, highlights, global };
    struct Grade {
        Range range = Range::global;
        RGB tint{}; ///< A hue's direction, of no luma.
        double saturation = 0;
        double luminance = 0;
    };

    bool isMonochrome = false;
    double clarity = 0;
    double texture = 0;
    std::optional<Vignette> vignette;
    std::optional<Grain> grain;
    bool isIdentity = true; ///< Changes no colour by more than a half step of 8 bits, and has no effects.
    RGB linearGain{1, 1, 1};
    double contrast = 0; ///< This and the next four: about -1 to 1.
    double highlights = 0;
    double shadows = 0;
    double whites = 0;
    double blacks = 0;
    ParametricCurve parametric;
    std::optional<PointCurve> master;
    std::optional<PointCurve> red;
    std::optional<PointCurve> green;
    std::optional<PointCurve> blue;
    Bands grayMix{};
    Bands hueShift{};
    Bands saturationShift{};
    Bands luminanceShift{};
    bool hasHSL = false;
    double saturation = 1;
    double vibrance = 0;
    std::vector<Grade> grades;
    double gradeBalance = 0;
    double gradeBlending = 0.5;

    /// The identity.
    PresetLook() = default;
    explicit PresetLook(const PresetSettings& settings);

    /// `colors` of `curves`.
    [[nodiscard]] RGB apply(RGB color) const;
    /// White balance, exposure, tone and curves. Unless the look is monochrome each channel of the result is
    /// made of its own alone.
    [[nodiscard]] RGB curves(RGB color) const;
    /// What mixes channels: hues, saturation and grades.
    [[nodiscard]] RGB colors(RGB color) const;
};

} // namespace kelvara
