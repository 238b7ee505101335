#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kelvara::samplecard {

/// Lossless JPEG (ITU-T T.81, process 14, predictor 1) of a mosaic of `bits` bits (up to 15): two interleaved
/// components, so that each sample is predicted from the nearest one of its own colour. `width` must be even.
std::string encodeLosslessJPEG(const std::vector<std::uint16_t>& mosaic, int width, int height, int bits);

} // namespace kelvara::samplecard
