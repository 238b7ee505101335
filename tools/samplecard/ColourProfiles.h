#pragma once

#include "samplecard/Picture.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kelvara::samplecard {

enum class ColourProfile { sRGB, adobeRGB, displayP3 };

/// An ICC profile made from the published primaries and transfer curve; the same bytes every time.
std::string profileBytes(ColourProfile profile);

/// The picture in the colours of `profile`, RGB interleaved, encoded with its curve. sRGB is the picture
/// itself.
std::vector<std::uint16_t> samplesIn(ColourProfile profile, const Picture& picture);

} // namespace kelvara::samplecard
