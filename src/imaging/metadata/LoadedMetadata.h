#pragma once

#include "imaging/Bitmap.h"
#include "imaging/Orientation.h"
#include "model/FileURL.h"

#include <exiv2/exiv2.hpp>

#include <optional>
#include <stop_token>

namespace kelvara {

/// Everything a file says about itself, in Exiv2's terms.
struct LoadedMetadata {
    Exiv2::ExifData exif;
    Exiv2::IptcData iptc;
    Exiv2::XmpData xmp;
    std::optional<PixelSize> pixelSize; ///< As stored.
    std::optional<Orientation> orientation;

    /// By Exiv2, or by the libraries that decode the format where it can't read the container; of a video
    /// only the size. Whatever can't be read is missing. Any thread; reads little more than the metadata.
    [[nodiscard]] static LoadedMetadata of(const FileURL& url, const std::stop_token& stop);
};

} // namespace kelvara
