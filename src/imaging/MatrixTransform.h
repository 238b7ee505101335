#pragma once

#include "imaging/ColorProfile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace kelvara {

/// Converts pixels of 16 bits between two RGB spaces that are each three curves and a matrix, as nearly all
/// are: exactly, where LittleCMS at a comparable speed interpolates between a few thousand colours and errs
/// by several parts in 255 near the edge of the space.
class MatrixTransform {
public:
    /// Null when one of the profiles is of another kind.
    [[nodiscard]] static std::unique_ptr<const MatrixTransform> make(const ColorProfile& source,
                                                                     const ColorProfile& destination);

    /// From bgrx16 to bgrx8 or bgrx16; the number that means nothing stays as it is in `to`.
    template <typename Sample> void convert(const std::uint16_t* from, Sample* to, std::size_t pixels) const;

private:
    MatrixTransform() = default;

    // Channels are in the order of the pixels: blue, green, red.
    std::array<std::vector<float>, 3> m_light; // of each 16-bit number, scaled to the steps of m_numbers
    std::array<std::array<float, 3>, 3> m_matrix{};
    std::array<std::vector<float>, 3> m_numbers; // of the light in equal steps, from 0 to 65535
};

} // namespace kelvara
