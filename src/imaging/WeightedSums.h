#pragma once

#include "imaging/Bitmap.h"

#include <cstddef>
#include <cstdint>
#include <span>

/// What scaling adds up. The same to the last bit on every processor.
namespace kelvara::WeightedSums {

/// What vector code may touch beyond the last sample of a row.
constexpr std::size_t more = 32;

/// Pixels next to each other, as many as there are weights from an index on.
struct Stretch {
    int first;
    int count;
    std::size_t weights;
};

/// Sums `rows` of samples as bitmaps hold them, one weight for each row, into as many floats. Rows and sums
/// have `more` samples beyond those.
void ofRows(PixelFormat format, std::span<const std::uint8_t* const> rows, const float* weights, float* sums,
            std::size_t samples);

/// Sums stretches of pixels of four floats, each into a pixel of `format`, rounded.
void ofPixels(const float* pixels, std::span<const Stretch> stretches, const float* weights,
              PixelFormat format, std::uint8_t* to);

} // namespace kelvara::WeightedSums
