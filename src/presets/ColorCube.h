#pragma once

#include "presets/DevelopPreset.h"

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace kelvara {

/// What a preset does to colours, at 33 steps of red, green and blue; between them it is interpolated.
/// Colours are sRGB-encoded, 0 to 1. Nothing in it changes, so it may be shared.
class ColorCube {
public:
    static constexpr std::size_t points = 33;
    static constexpr std::size_t entries = points * points * points;

    /// The preset at its strength, then its adjustments. Takes some milliseconds.
    explicit ColorCube(const DevelopPreset& preset);
    /// `values` as below.
    explicit ColorCube(std::vector<float> values);

    /// Four numbers an entry, in the order of pixels: blue, green, red and one. Red varies fastest, then
    /// green.
    [[nodiscard]] const std::vector<float>& values() const { return m_values; }
    /// Whether it leaves every colour as it is, but for what is lost in rounding.
    [[nodiscard]] bool isIdentity() const { return m_isIdentity; }

private:
    std::vector<float> m_values;
    bool m_isIdentity;
};

/// Cubes by what the preset was when they were made; the last used ones are kept. Thread-safe.
class CubeCache {
public:
    static constexpr std::size_t most = 64; // some 37 MB

    [[nodiscard]] std::shared_ptr<const ColorCube> cube(const DevelopPreset& preset);
    void clear();

private:
    using Entry = std::pair<PresetRevision, std::shared_ptr<const ColorCube>>;

    std::mutex m_mutex;
    std::list<Entry> m_entries; // most recently used first
};

} // namespace kelvara
