#include "presets/ColorCube.h"

#include "imaging/RowSlices.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kelvara {
namespace {

constexpr double last = ColorCube::points - 1;

/// Entry `i` without any change.
RGB gridColor(std::size_t i) {
    constexpr auto points = ColorCube::points;
    return {static_cast<double>(i % points) / last, static_cast<double>(i / points % points) / last,
            static_cast<double>(i / points / points) / last};
}

bool leavesColors(const std::vector<float>& values) {
    constexpr double rounding = 1e-6;
    for (std::size_t i = 0; i < ColorCube::entries; ++i) {
        const auto color = gridColor(i);
        for (std::size_t c = 0; c < 3; ++c) {
            if (std::abs(static_cast<double>(values[i * 4 + c]) - color[2 - c]) > rounding) return false;
        }
    }
    return true;
}

/// A look at the cube's points. What it does to each channel alone, which takes most of the time, is done
/// once for each step.
class LookAtPoints {
public:
    /// `look` outlives it.
    explicit LookAtPoints(const PresetLook& look) : m_look{look} {
        for (std::size_t i = 0; i < ColorCube::points; ++i) {
            const double x = static_cast<double>(i) / last;
            m_curves[i] = look.curves({x, x, x});
        }
    }
    [[nodiscard]] RGB operator()(std::size_t i) const {
        if (m_look.isMonochrome) return m_look.apply(gridColor(i));
        constexpr auto points = ColorCube::points;
        return m_look.colors(
            {m_curves[i % points][0], m_curves[i / points % points][1], m_curves[i / points / points][2]});
    }

private:
    const PresetLook& m_look;
    std::array<RGB, ColorCube::points> m_curves;
};

std::vector<float> sampled(const DevelopPreset& preset) {
    // Edits alone are a look of their own, sampled as fast as one.
    const double strength = preset.look.isIdentity ? 0 : std::clamp(preset.amount, 0.0, 1.0);
    const bool isEdited = !preset.adjustments.isIdentity;
    const LookAtPoints look{strength > 0 ? preset.look : preset.adjustments};
    std::vector<float> values(ColorCube::entries * 4);
    const auto sample = [&](std::size_t i) {
        auto out = look(i);
        if (strength > 0) {
            const auto in = gridColor(i);
            for (std::size_t c = 0; c < 3 && strength < 1; ++c) out[c] = in[c] + (out[c] - in[c]) * strength;
            if (isEdited) out = preset.adjustments.apply(out);
        }
        for (std::size_t c = 0; c < 3; ++c) values[i * 4 + c] = static_cast<float>(out[2 - c]);
        values[i * 4 + 3] = 1;
    };
    constexpr auto planes = static_cast<int>(ColorCube::points);
    constexpr auto planeEntries = ColorCube::points * ColorCube::points;
    forRowSlices(
        planes, ColorCube::entries,
        [&](int begin, int end) {
            const auto first = static_cast<std::size_t>(begin) * planeEntries;
            for (auto i = first; i < static_cast<std::size_t>(end) * planeEntries; ++i) sample(i);
        },
        ColorCube::entries / 4);
    return values;
}

} // namespace

ColorCube::ColorCube(const DevelopPreset& preset) : ColorCube{sampled(preset)} {}

ColorCube::ColorCube(std::vector<float> values)
    : m_values{std::move(values)}, m_isIdentity{leavesColors(m_values)} {}

std::shared_ptr<const ColorCube> CubeCache::cube(const DevelopPreset& preset) {
    const auto find = [&] {
        const auto found = std::ranges::find(m_entries, preset.revision, &Entry::first);
        if (found == m_entries.end()) return false;
        m_entries.splice(m_entries.begin(), m_entries, found);
        return true;
    };
    {
        const std::lock_guard lock{m_mutex};
        if (find()) return m_entries.front().second;
    }
    auto cube = std::make_shared<const ColorCube>(preset);
    const std::lock_guard lock{m_mutex};
    if (!find()) m_entries.emplace_front(preset.revision, std::move(cube)); // else another was faster
    if (m_entries.size() > most) m_entries.pop_back();
    return m_entries.front().second;
}

void CubeCache::clear() {
    const std::lock_guard lock{m_mutex};
    m_entries.clear();
}

} // namespace kelvara
