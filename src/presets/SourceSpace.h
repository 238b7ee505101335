#pragma once

#include "imaging/ColorProfile.h"

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

namespace kelvara {

struct MatrixProfile;

/// The way of a picture's colours to sRGB, in which cubes are, and back. Thread-safe, as nothing in it
/// changes.
class SourceSpace {
public:
    /// Null for profiles that are no curves and matrix. The last one made is kept.
    [[nodiscard]] static std::shared_ptr<const SourceSpace> of(const ColorProfilePtr& profile);

    /// Pixels of four floats from 0 to 1 (blue, green, red, any), in place. What sRGB can't hold is cut off
    /// into `beyond`, which has as many floats.
    ///
    /// Both read and write up to 16 pixels more, which have to be finite numbers.
    void toSRGB(float* pixels, float* beyond, std::size_t count) const;
    /// Back, with `share` of what was cut off.
    void fromSRGB(float* pixels, float* beyond, float share, std::size_t count) const;

private:
    using Table = std::vector<float>;
    struct Curves {
        std::array<Table, 3> light;   ///< Of the number.
        std::array<Table, 3> numbers; ///< Of the light's square root, in which no curve is steep.
    };
    using Matrix = std::array<float, 9>;

    explicit SourceSpace(const MatrixProfile& source);
    static Curves curvesOf(const MatrixProfile& profile);

    Curves m_curves;
    Curves m_sRGB;
    Matrix m_toSRGB{};
    Matrix m_fromSRGB{};
};

} // namespace kelvara
