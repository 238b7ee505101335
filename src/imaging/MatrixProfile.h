#pragma once

#include "imaging/ColorProfile.h"

#include <array>
#include <functional>
#include <optional>

namespace kelvara {

/// A colour space that is three curves and a matrix, as those of nearly all pictures and screens are.
/// Channels are in the order of pixels: blue, green, red. Thread-safe, as nothing in it changes.
struct MatrixProfile {
    using Matrix = std::array<std::array<double, 3>, 3>;
    using Function = std::function<float(float)>;

    std::array<Function, 3> light;   ///< Of the number that stands for it, both from 0 to 1.
    std::array<Function, 3> numbers; ///< The other way.
    Matrix toXYZ{};                  ///< From light.
    Matrix fromXYZ{};

    /// Empty for profiles of another kind.
    [[nodiscard]] static std::optional<MatrixProfile> of(const ColorProfile& profile);

    /// From this space's light to that of `other`.
    [[nodiscard]] Matrix lightTo(const MatrixProfile& other) const;
};

} // namespace kelvara
