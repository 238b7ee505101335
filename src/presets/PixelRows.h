#pragma once

#include <cstddef>
#include <cstdint>

/// Between the numbers that bitmaps hold and pixels of four floats from 0 to 1: blue, green, red and one that
/// means nothing. There and back changes no number. The same to the last bit on every processor.
namespace kelvara::PixelRows {

void unpack(const std::uint8_t* from, float* to, std::size_t count);
void unpack(const std::uint16_t* from, float* to, std::size_t count);

/// Every channel times the pixel's factor, plus its summand, rounded; beyond 0 and 1 the nearest within.
///
/// Reads up to 16 pixels, factors and summands more.
void pack(const float* from, const float* factors, const float* summands, std::uint8_t* to,
          std::size_t count);
void pack(const float* from, const float* factors, const float* summands, std::uint16_t* to,
          std::size_t count);

} // namespace kelvara::PixelRows
