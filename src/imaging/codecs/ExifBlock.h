#pragma once

#include "imaging/ColorProfile.h"
#include "imaging/Orientation.h"
#include "imaging/codecs/TiffReader.h"

namespace kelvara {

/// What the decoders take from an EXIF block; everything else in it is the metadata service's.
struct ExifBlock {
    Orientation orientation;
    bool isAdobeRGB = false; ///< By its interoperability index, as cameras that embed no profile say it.
    ByteRange thumbnail;     ///< A JPEG; empty when there is none.

    /// From TIFF data; all defaults when it is none.
    [[nodiscard]] static ExifBlock read(const ByteRange& tiff);
};

/// Whether an EXIF directory, of a photo or of a RAW file's first directory, says Adobe RGB.
[[nodiscard]] bool namesAdobeRGB(TiffReader& reader, const TiffDirectory& exif);

/// The meaning of a picture's numbers by its ICC profile, else by EXIF, else null.
[[nodiscard]] ColorProfilePtr profileOf(const std::vector<std::uint8_t>& icc, bool isAdobeRGB);

} // namespace kelvara
