#pragma once

#include "imaging/Bitmap.h"

#include <array>
#include <optional>

namespace kelvara {

/// What fraction of a picture's pixels is at each of the 256 levels of 8 bits, in its own colour space. A
/// value; any thread.
struct Histogram {
    using Levels = std::array<double, 256>; ///< The sum is 1, or 0 without a picture.

    Levels red{};
    Levels green{};
    Levels blue{};
    Levels luminance{};

    /// Of the picture scaled down to a longest side of `sampleSize`, as a larger one tells no more. Empty for
    /// null and when memory is short.
    [[nodiscard]] static std::optional<Histogram> of(const BitmapPtr& image, int sampleSize);
};

} // namespace kelvara
