#include "presets/AutoTone.h"

#include <algorithm>
#include <cmath>

namespace kelvara::AutoTone {

namespace {

using Levels = Histogram::Levels;
using Slider = LightAdjustments::Slider;

constexpr std::size_t lastLevel = Levels{}.size() - 1;

constexpr double lowestExposure = -1.5;
constexpr double exposureStep = 0.01;
constexpr double middleLevel = 0.42;
constexpr std::size_t darkMedian = 40; // below it a photo is dark on purpose, and brightened less
constexpr double clippedLevel = 0.995;
constexpr double leastClipping = 0.005;
constexpr double wantedSpread = 0.22;

class Solver {
public:
    Solver(const Levels& bins, const std::optional<DevelopPreset>& preset) : m_bins{bins}, m_preset{preset} {}

    LightAdjustments solve() {
        m_light.set(Slider::exposure, unclipped(exposureForMiddle()));
        m_light.set(Slider::contrast,
                    std::clamp((wantedSpread - standardDeviation(curve(m_light))) * 150, -20.0, 30.0));
        const auto response = curve(m_light); // the rest looks at this one alone
        m_light.set(Slider::highlights, highlights(response));
        m_light.set(Slider::shadows, shadows(response));
        m_light.set(Slider::whites, whites(response));
        m_light.set(Slider::blacks, blacks(response));
        for (const auto slider : LightAdjustments::sliders) {
            if (slider != Slider::exposure) m_light.set(slider, std::round(m_light[slider]));
        }
        return m_light;
    }

private:
    /// What brightness each level of grey is drawn with.
    [[nodiscard]] Levels curve(const LightAdjustments& light) const {
        const auto combined = DevelopPreset::combining(m_preset, light);
        Levels outputs{};
        for (std::size_t i = 0; i < outputs.size(); ++i) {
            const double x = static_cast<double>(i) / lastLevel;
            outputs[i] = combined ? luma(drawn(*combined, x, !light.isEmpty())) : x;
        }
        return outputs;
    }

    static RGB drawn(const DevelopPreset& preset, double x, bool hasEdits) {
        RGB color{x, x, x};
        if (preset.amount > 0 && !preset.look.isIdentity) {
            color = preset.look.apply(color);
            if (preset.amount < 1) {
                for (auto& c : color) c = x + (c - x) * preset.amount;
            }
        }
        return hasEdits ? preset.adjustments.apply(color) : color;
    }
    static double luma(const RGB& color) { return 0.299 * color[0] + 0.587 * color[1] + 0.114 * color[2]; }

    [[nodiscard]] Levels curveAtExposure(double exposure) const {
        LightAdjustments light;
        light.set(Slider::exposure, exposure);
        return curve(light);
    }

    /// The first level up to which the fraction `share` of the pixels lies; empty where none does.
    [[nodiscard]] std::optional<std::size_t> levelReaching(double share) const {
        double sum = 0;
        for (std::size_t i = 0; i < m_bins.size(); ++i) {
            sum += m_bins[i];
            if (sum >= share) return i;
        }
        return std::nullopt;
    }

    /// The fraction of the pixels whose brightness after `response` is such.
    template <typename Condition>
    [[nodiscard]] double share(const Levels& response, Condition condition) const {
        double sum = 0;
        for (std::size_t i = 0; i < m_bins.size(); ++i) {
            if (condition(response[i])) sum += m_bins[i];
        }
        return sum;
    }
    [[nodiscard]] double clipped(const Levels& response) const {
        return share(response, [](double y) { return y >= clippedLevel; });
    }

    [[nodiscard]] double standardDeviation(const Levels& response) const {
        double mean = 0;
        for (std::size_t i = 0; i < m_bins.size(); ++i) mean += m_bins[i] * response[i];
        double variance = 0;
        for (std::size_t i = 0; i < m_bins.size(); ++i) {
            variance += m_bins[i] * (response[i] - mean) * (response[i] - mean);
        }
        return std::sqrt(variance);
    }

    /// The exposure between `lowestExposure` and `high` up to which `isBelow` holds.
    template <typename Condition> static double bisected(double high, Condition isBelow) {
        double low = lowestExposure;
        while (high - low > exposureStep) {
            const double middle = (low + high) * 0.5;
            (isBelow(middle) ? low : high) = middle;
        }
        return std::round((low + high) * 0.5 / exposureStep) * exposureStep;
    }

    [[nodiscard]] double exposureForMiddle() const {
        const auto median = levelReaching(0.5).value_or(lastLevel);
        const bool isDark = median < darkMedian;
        const double highest = isDark ? 0.7 : 1.5;
        const double pull = isDark ? 0.35 : 0.7;
        const auto brightness = [&](double exposure) { return curveAtExposure(exposure)[median]; };
        const double now = brightness(0);
        const double target = now + pull * (middleLevel - now);
        if (brightness(lowestExposure) >= target) return lowestExposure;
        if (brightness(highest) <= target) return highest;
        return bisected(highest, [&](double exposure) { return brightness(exposure) < target; });
    }

    /// The exposure, lowered where it would clip more than is allowed.
    [[nodiscard]] double unclipped(double exposure) const {
        const auto clippedAt = [&](double e) { return clipped(curveAtExposure(e)); };
        const double allowed = std::max(leastClipping, clippedAt(0));
        if (clippedAt(exposure) <= allowed || exposure == lowestExposure) return exposure;
        if (clippedAt(lowestExposure) >= allowed) return lowestExposure;
        return bisected(exposure, [&](double e) { return clippedAt(e) < allowed; });
    }

    [[nodiscard]] double highlights(const Levels& response) const {
        const double excess = (share(response, [](double y) { return y > 0.85; }) - 0.05) * 300;
        return excess > 0 ? -std::min(excess, 60.0) : 0;
    }
    [[nodiscard]] double shadows(const Levels& response) const {
        return std::clamp((share(response, [](double y) { return y < 0.12; }) - 0.2) * 80, 0.0, 30.0);
    }
    [[nodiscard]] double whites(const Levels& response) const {
        const auto level = levelReaching(0.995);
        return level && *level < 254 ? std::clamp((0.95 - response[*level]) * 150, -30.0, 30.0) : 0;
    }
    [[nodiscard]] double blacks(const Levels& response) const {
        const double excess = (response[levelReaching(0.005).value_or(lastLevel)] - 0.03) * 400;
        return excess > 0 ? -std::min(excess, 30.0) : 0;
    }

    const Levels& m_bins;
    const std::optional<DevelopPreset>& m_preset;
    LightAdjustments m_light;
};

} // namespace

LightAdjustments adjustments(const Histogram& histogram, const std::optional<DevelopPreset>& preset) {
    return Solver{histogram.luminance, preset}.solve();
}

} // namespace kelvara::AutoTone
