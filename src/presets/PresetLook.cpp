#include "presets/PresetLook.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <string_view>

namespace kelvara {

namespace {

using Bands = PresetLook::Bands;
using Range = PresetLook::Range;
using std::numbers::pi;

constexpr std::array<std::string_view, PresetLook::bandCount> bandNames{
    "Red", "Orange", "Yellow", "Green", "Aqua", "Blue", "Purple", "Magenta"};
/// Degrees; the first band comes round again at the end.
constexpr std::array<double, PresetLook::bandCount + 1> bandCentres{0, 30, 60, 120, 180, 240, 270, 300, 360};

constexpr RGB neutralGain{1, 1, 1};

/// What is no finite number counts as missing.
double number(const PresetSettings& settings, std::string_view key, double missing = 0) {
    const auto found = settings.find(key);
    if (found == settings.end()) return missing;
    const auto* value = std::get_if<double>(&found->second);
    return value != nullptr && std::isfinite(*value) ? *value : missing;
}

/// A setting of a scale to 100.
double hundredth(const PresetSettings& settings, std::string_view key, double missing = 0) {
    return number(settings, key, missing) / 100;
}

std::string_view text(const PresetSettings& settings, std::string_view key) {
    const auto found = settings.find(key);
    const auto* value = found == settings.end() ? nullptr : std::get_if<std::string>(&found->second);
    return value != nullptr ? std::string_view{*value} : std::string_view{};
}

Bands bands(const PresetSettings& settings, std::string_view prefix) {
    Bands values{};
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = hundredth(settings, std::string{prefix}.append(bandNames[i]));
    }
    return values;
}

bool hasShift(const Bands& shifts) {
    return std::any_of(shifts.begin(), shifts.end(), [](double shift) { return shift != 0; });
}

/// To 0...1. What settings beyond all measure have made of no number is black.
double clamped(double x) { return x > 0 ? std::min(x, 1.0) : 0.0; }
RGB clamped(const RGB& color) { return {clamped(color[0]), clamped(color[1]), clamped(color[2])}; }

double smoothstep(double t) { return t * t * (3 - 2 * t); }
double squaredSine(double x) { return std::sin(x) * std::sin(x); }
double luma(const RGB& color) { return 0.299 * color[0] + 0.587 * color[1] + 0.114 * color[2]; }

double decoded(double c) { return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); }
double encoded(double c) { return c <= 0.0031308 ? 12.92 * c : 1.055 * std::pow(c, 1 / 2.4) - 0.055; }

struct HSV {
    double hue = 0; ///< Degrees, 0 to 360.
    double saturation = 0;
    double value = 0;
};

HSV hsv(const RGB& color) {
    const auto [r, g, b] = color;
    const double value = std::max({r, g, b});
    const double chroma = value - std::min({r, g, b});
    if (value <= 0 || chroma <= 0) return {0, 0, value};
    double hue = 0;
    if (value == r) {
        hue = 60 * ((g - b) / chroma);
    } else if (value == g) {
        hue = 60 * ((b - r) / chroma) + 120;
    } else {
        hue = 60 * ((r - g) / chroma) + 240;
    }
    return {hue < 0 ? hue + 360 : hue, chroma / value, value};
}

/// Any hue; beyond 0 to 360 it comes round again.
RGB rgb(double hue, double s, double v) {
    hue = std::fmod(hue, 360);
    if (hue < 0) hue += 360;
    const double position = hue / 60;
    const double sector = std::floor(position);
    const double f = position - sector;
    const double p = v * (1 - s);
    const double q = v * (1 - s * f);
    const double t = v * (1 - s * (1 - f));
    switch (static_cast<int>(sector) % 6) {
    case 0:
        return {v, t, p};
    case 1:
        return {q, v, p};
    case 2:
        return {p, v, t};
    case 3:
        return {p, q, v};
    case 4:
        return {t, p, v};
    default:
        return {v, p, q};
    }
}

/// How much of each band a hue of 0 to 360 degrees is: of two neighbours at most.
Bands hueWeights(double hue) {
    std::size_t band = PresetLook::bandCount - 1;
    while (band > 0 && bandCentres[band] > hue) --band;
    const double t =
        smoothstep(clamped((hue - bandCentres[band]) / (bandCentres[band + 1] - bandCentres[band])));
    Bands weights{};
    weights[band] = 1 - t;
    weights[(band + 1) % PresetLook::bandCount] += t;
    return weights;
}

double weighted(const Bands& weights, const Bands& values) {
    return std::inner_product(weights.begin(), weights.end(), values.begin(), 0.0);
}

/// White balance and exposure.
RGB gain(const PresetSettings& settings) {
    double temperature = 0.5 * number(settings, "IncrementalTemperature");
    double tint = number(settings, "IncrementalTint");
    const auto whiteBalance = settings.find("WhiteBalance");
    if (whiteBalance != settings.end() && std::holds_alternative<std::string>(whiteBalance->second) &&
        std::get<std::string>(whiteBalance->second) != "As Shot") {
        const double kelvin = number(settings, "Temperature");
        if (kelvin > 0) temperature += 181.8181818181818 - 1000000 / kelvin;
        tint += number(settings, "Tint");
    }
    const RGB balance{std::exp(0.0035 * temperature), std::exp(-0.0025 * tint),
                      std::exp(-0.0035 * temperature)};
    const double exposure = std::exp2(number(settings, "Exposure2012"));
    RGB gain{};
    for (std::size_t i = 0; i < gain.size(); ++i) gain[i] = balance[i] / luma(balance) * exposure;
    const bool isFinite = std::all_of(gain.begin(), gain.end(), [](double g) { return std::isfinite(g); });
    return isFinite ? gain : neutralGain;
}

/// Shifts that take each other back leave a rest in the last digits.
bool isNeutral(const RGB& gain) {
    return std::all_of(gain.begin(), gain.end(), [](double g) { return std::abs(g - 1) <= 1e-9; });
}

std::optional<PresetLook::PointCurve> pointCurve(const PresetSettings& settings, std::string_view key) {
    const auto found = settings.find(key);
    const auto* values = found == settings.end() ? nullptr : std::get_if<std::vector<double>>(&found->second);
    return values != nullptr ? PresetLook::PointCurve::through(*values) : std::nullopt;
}

PresetLook::Grade grade(Range range, double hue, double saturation, double luminance) {
    const auto color = rgb(hue, 1, 1);
    const double y = luma(color);
    return {range, {color[0] - y, color[1] - y, color[2] - y}, saturation, luminance};
}

std::vector<PresetLook::Grade> colorGrades(const PresetSettings& settings) {
    std::vector<PresetLook::Grade> grades;
    constexpr std::array<std::string_view, 4> parts{"Shadow", "Midtone", "Highlight", "Global"};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const auto key = std::string{"ColorGrade"}.append(parts[i]);
        const double saturation = hundredth(settings, key + "Sat");
        const double luminance = hundredth(settings, key + "Lum");
        if (saturation == 0 && luminance == 0) continue;
        grades.push_back(grade(static_cast<Range>(i), number(settings, key + "Hue"), saturation, luminance));
    }
    return grades;
}

std::vector<PresetLook::Grade> splitToning(const PresetSettings& settings) {
    std::vector<PresetLook::Grade> grades;
    const auto add = [&](Range range, std::string_view saturationKey, std::string_view hueKey) {
        const double saturation = hundredth(settings, saturationKey);
        if (saturation != 0) grades.push_back(grade(range, number(settings, hueKey), saturation, 0));
    };
    add(Range::shadows, "SplitToningShadowSaturation", "SplitToningShadowHue");
    add(Range::highlights, "SplitToningHighlightSaturation", "SplitToningHighlightHue");
    return grades;
}

RGB gained(RGB color, const RGB& gain) {
    for (std::size_t i = 0; i < color.size(); ++i) color[i] = clamped(encoded(decoded(color[i]) * gain[i]));
    return color;
}

double gray(const RGB& color, const Bands& mix) {
    const auto [hue, saturation, value] = hsv(color);
    return luma(color) + saturation * weighted(hueWeights(hue), mix) * 0.35;
}

double tone(const PresetLook& look, double x) {
    if (look.contrast != 0) x -= std::sin(2 * pi * x) / (2 * pi) * look.contrast * 0.6;
    if (0.35 < x && x < 1.05) x += squaredSine((x - 0.35) * pi / (1.05 - 0.35)) * look.highlights * 0.18;
    if (-0.05 < x && x < 0.6) x += squaredSine((x + 0.05) * pi / 0.65) * look.shadows * 0.18;
    x += look.whites * 0.12 * smoothstep(clamped((x - 0.45) / 0.55));
    x += look.blacks * 0.12 * (1 - smoothstep(clamped(x / 0.55)));
    return x;
}

RGB adjustHSL(const PresetLook& look, const RGB& color) {
    auto [hue, saturation, value] = hsv(color);
    if (saturation <= 0.001) return color;
    const auto weights = hueWeights(hue);
    hue += 30 * weighted(weights, look.hueShift);
    saturation = std::min(1.0, saturation * (1 + weighted(weights, look.saturationShift)));
    value = std::min(1.0, value * (1 + saturation * 0.5 * weighted(weights, look.luminanceShift)));
    return rgb(hue, saturation, value);
}

RGB adjustSaturation(const PresetLook& look, RGB color) {
    const double y = luma(color);
    const auto [least, most] = std::minmax_element(color.begin(), color.end());
    const double chroma = *most - *least;
    const double factor = std::max(0.0, look.saturation * (1 + look.vibrance * (1 - chroma)));
    for (auto& c : color) c = y + (c - y) * factor;
    return color;
}

RGB applyGrades(const PresetLook& look, RGB color) {
    const double y = luma(color);
    const double centre = 0.5 - 0.3 * look.gradeBalance;
    const double half = (0.15 + 0.7 * look.gradeBlending) / 2;
    const double s = smoothstep(clamped((y - (centre - half)) / (2 * half)));
    const std::array<double, 4> weights{1 - s, 4 * y * (1 - y), s, 1}; // in the order of Range
    for (const auto& grade : look.grades) {
        const double weight = weights[static_cast<std::size_t>(grade.range)];
        for (std::size_t i = 0; i < color.size(); ++i) {
            color[i] += grade.luminance * weight * 0.2 + grade.tint[i] * grade.saturation * weight * 0.3;
        }
    }
    return color;
}

/// The second derivatives at the points of a cubic spline that has none at its ends.
std::vector<double> naturalSpline(const std::vector<double>& xs, const std::vector<double>& ys) {
    const auto count = xs.size();
    std::vector<double> m(count);
    std::vector<double> upper(count); // of the tridiagonal system, once the lower diagonal is eliminated
    for (std::size_t i = 1; i + 1 < count; ++i) {
        const double before = xs[i] - xs[i - 1];
        const double after = xs[i + 1] - xs[i];
        const double slopes = (ys[i + 1] - ys[i]) / after - (ys[i] - ys[i - 1]) / before;
        const double pivot = 2 * (before + after) - before * upper[i - 1];
        upper[i] = after / pivot;
        m[i] = (6 * slopes - before * m[i - 1]) / pivot;
    }
    for (std::size_t i = count - 1; i-- > 1;) m[i] -= upper[i] * m[i + 1];
    return m;
}

std::vector<RGB> makeSamples() {
    constexpr std::array<double, 5> levels{0, 0.2, 0.45, 0.7, 1};
    std::vector<RGB> samples;
    for (const double r : levels) {
        for (const double g : levels) {
            for (const double b : levels) samples.push_back({r, g, b});
        }
    }
    return samples;
}

bool changesNoColor(const PresetLook& look) {
    static const auto samples = makeSamples();
    return std::all_of(samples.begin(), samples.end(), [&](const RGB& sample) {
        const auto result = look.apply(sample);
        double difference = 0;
        for (std::size_t i = 0; i < sample.size(); ++i) {
            difference = std::max(difference, std::abs(result[i] - sample[i]));
        }
        return difference < 1.0 / 510;
    });
}

} // namespace

PresetLook::ParametricCurve::ParametricCurve(const PresetSettings& settings) {
    const std::array<double, 5> b{0, hundredth(settings, "ParametricShadowSplit", 25),
                                  hundredth(settings, "ParametricMidtoneSplit", 50),
                                  hundredth(settings, "ParametricHighlightSplit", 75), 1};
    const auto add = [&](double lower, double upper, std::string_view key) {
        const double amount = hundredth(settings, key);
        if (amount != 0) zones.push_back({lower, upper, amount});
    };
    add(0, b[1] + (b[2] - b[1]) / 2, "ParametricShadows");
    add(b[1] - (b[1] - b[0]) / 2, b[2] + (b[3] - b[2]) / 2, "ParametricDarks");
    add(b[2] - (b[2] - b[1]) / 2, b[3] + (b[4] - b[3]) / 2, "ParametricLights");
    add(b[3] - (b[3] - b[2]) / 2, 1, "ParametricHighlights");
}

double PresetLook::ParametricCurve::operator()(double x) const {
    double y = x;
    for (const auto& [lower, upper, amount] : zones) {
        if (!(lower < x && x < upper)) continue;
        const double width = upper - lower;
        y += width * squaredSine(pi * (x - lower) / width) * amount * 0.35;
    }
    return clamped(y);
}

std::optional<PresetLook::PointCurve> PresetLook::PointCurve::through(const std::vector<double>& values) {
    std::vector<std::pair<double, double>> points;
    for (std::size_t i = 0; i + 1 < values.size(); i += 2) {
        if (!std::isfinite(values[i]) || !std::isfinite(values[i + 1])) continue;
        points.emplace_back(values[i] / 255, values[i + 1] / 255);
    }
    if (points.empty()) return std::nullopt;
    std::stable_sort(points.begin(), points.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    PointCurve curve;
    for (const auto& [x, y] : points) {
        if (!curve.xs.empty() && curve.xs.back() == x) {
            curve.ys.back() = y;
        } else {
            curve.xs.push_back(x);
            curve.ys.push_back(y);
        }
    }
    curve.m = naturalSpline(curve.xs, curve.ys);
    return curve;
}

double PresetLook::PointCurve::operator()(double x) const {
    if (!(x > xs.front())) return ys.front();
    if (!(x < xs.back())) return ys.back();
    const auto next = static_cast<std::size_t>(std::lower_bound(xs.begin(), xs.end(), x) - xs.begin());
    const auto k = next - 1;
    const double h = xs[next] - xs[k];
    const double a = (xs[next] - x) / h;
    const double b = (x - xs[k]) / h;
    return a * ys[k] + b * ys[next] + ((a * a * a - a) * m[k] + (b * b * b - b) * m[next]) * (h * h) / 6;
}

PresetLook::PresetLook(const PresetSettings& settings) {
    const auto grayscale = settings.find("ConvertToGrayscale");
    const bool* isGrayscale = grayscale == settings.end() ? nullptr : std::get_if<bool>(&grayscale->second);
    isMonochrome = (isGrayscale != nullptr && *isGrayscale) || number(settings, "Saturation") <= -100;
    const bool isVivid = text(settings, "CameraProfile") == "Adobe Vivid";
    linearGain = gain(settings);

    const double dehaze = hundredth(settings, "Dehaze");
    contrast = dehaze * 0.35 + (isVivid ? 0.1 : 0) + hundredth(settings, "Contrast2012");
    highlights = hundredth(settings, "Highlights2012");
    shadows = hundredth(settings, "Shadows2012");
    whites = hundredth(settings, "Whites2012");
    blacks = hundredth(settings, "Blacks2012") - 0.3 * dehaze;

    parametric = ParametricCurve{settings};
    master = pointCurve(settings, "ToneCurvePV2012");
    red = pointCurve(settings, "ToneCurvePV2012Red");
    green = pointCurve(settings, "ToneCurvePV2012Green");
    blue = pointCurve(settings, "ToneCurvePV2012Blue");

    grayMix = bands(settings, "GrayMixer");
    hueShift = bands(settings, "HueAdjustment");
    saturationShift = bands(settings, "SaturationAdjustment");
    luminanceShift = bands(settings, "LuminanceAdjustment");
    hasHSL = hasShift(hueShift) || hasShift(saturationShift) || hasShift(luminanceShift);
    saturation = (1 + 0.2 * dehaze) * (isVivid ? 1.12 : 1) * (1 + hundredth(settings, "Saturation"));
    vibrance = hundredth(settings, "Vibrance");

    grades = colorGrades(settings);
    gradeBalance = hundredth(settings, "ColorGradeBalance");
    if (grades.empty()) {
        grades = splitToning(settings);
        gradeBalance = hundredth(settings, "SplitToningBalance");
    }
    gradeBlending = hundredth(settings, "ColorGradeBlending", 50);

    clarity = hundredth(settings, "Clarity2012");
    texture = hundredth(settings, "Texture");
    if (const double amount = hundredth(settings, "PostCropVignetteAmount"); amount != 0) {
        vignette = Vignette{amount, hundredth(settings, "PostCropVignetteMidpoint", 50),
                            hundredth(settings, "PostCropVignetteFeather", 50)};
    }
    if (const double amount = hundredth(settings, "GrainAmount"); amount > 0) {
        grain = Grain{amount, hundredth(settings, "GrainSize", 25)};
    }
    isIdentity = clarity == 0 && texture == 0 && !vignette && !grain && changesNoColor(*this);
}

RGB PresetLook::apply(RGB color) const { return colors(curves(color)); }

RGB PresetLook::curves(RGB color) const {
    if (!isNeutral(linearGain)) color = gained(color, linearGain);
    if (isMonochrome) color.fill(gray(color, grayMix));
    for (auto& c : color) {
        c = parametric(tone(*this, c));
        if (master) c = (*master)(c);
    }
    if (red) color[0] = (*red)(color[0]);
    if (green) color[1] = (*green)(color[1]);
    if (blue) color[2] = (*blue)(color[2]);
    return clamped(color);
}

RGB PresetLook::colors(RGB color) const {
    if (!isMonochrome) {
        if (hasHSL) color = adjustHSL(*this, color);
        if (saturation != 1 || vibrance != 0) color = adjustSaturation(*this, color);
    }
    if (!grades.empty()) color = applyGrades(*this, color);
    return clamped(color);
}

} // namespace kelvara
