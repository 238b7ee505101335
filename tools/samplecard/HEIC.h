#pragma once

#include "samplecard/ColourProfiles.h"
#include "samplecard/Picture.h"
#include "samplecard/Shot.h"

#include <optional>
#include <string>

namespace kelvara::samplecard {

struct HEICOptions {
    int bits = 8; ///< 8 or 10
    int quality = 75;
    int thumbnailSide = 320; ///< longest side of the stored thumbnail; 0 stores none
    ColourProfile colours = ColourProfile::sRGB;
};

/// HEVC in HEIF with an EXIF item. `shot.orientation` becomes a rotation of the container; the EXIF tag says
/// the same, as camera files do, and a reader must not turn the picture twice. Throws std::runtime_error.
std::string encodeHEIC(const Picture& upright, const Shot& shot, const HEICOptions& options);

} // namespace kelvara::samplecard
