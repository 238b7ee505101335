#include "presets/ColorCube.h"

#include <algorithm>
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

std::vector<float> sampled(const DevelopPreset& preset) {
    const double strength = std::clamp(preset.amount, 0.0, 1.0);
    std::vector<float> values(ColorCube::entries * 4);
    for (std::size_t i = 0; i < ColorCube::entries; ++i) {
        const auto in = gridColor(i);
        auto out = in;
        if (strength > 0) {
            out = preset.look.apply(in);
            if (strength < 1) {
                for (std::size_t c = 0; c < 3; ++c) out[c] = in[c] + (out[c] - in[c]) * strength;
            }
        }
        if (!preset.adjustments.isIdentity) out = preset.adjustments.apply(out);
        for (std::size_t c = 0; c < 3; ++c) values[i * 4 + c] = static_cast<float>(out[2 - c]);
        values[i * 4 + 3] = 1;
    }
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
