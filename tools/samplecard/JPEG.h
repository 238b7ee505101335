#pragma once

#include "samplecard/ColourProfiles.h"
#include "samplecard/Picture.h"
#include "samplecard/Shot.h"

#include <optional>
#include <string>

namespace kelvara::samplecard {

struct JPEGOptions {
    enum class Components { colour, grey, cmyk };

    int quality = 90;
    bool progressive = false;
    bool fullChroma = false;                     ///< 4:4:4 instead of 4:2:0
    Components components = Components::colour;  ///< CMYK is stored inverted with an Adobe marker
    ColourProfile colours = ColourProfile::sRGB; ///< what the samples are converted to
    bool embedsProfile = true;                   ///< false: no ICC segment
    std::string exif;                            ///< a block of `exifBlock`, or empty
};

/// The samples as they are, without regard to an orientation. Throws std::runtime_error where the library
/// fails.
std::string encodeJPEG(const Picture& picture, const JPEGOptions& options);

/// A camera's JPEG: stored as `shot.orientation` says, with EXIF and a letterboxed thumbnail of 160 by 120.
/// `options.exif` is made here.
std::string photoJPEG(const Picture& upright, const Shot& shot, JPEGOptions options);

} // namespace kelvara::samplecard
