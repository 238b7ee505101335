#pragma once

#include "imaging/Bitmap.h"
#include "imaging/ImageWriter.h"

#include <cstdint>
#include <stop_token>
#include <string>
#include <vector>

namespace kelvara {

/// What a photo's new file says about it: of the source what holds for the new file too, the new size, and
/// the rating.
struct CarriedMetadata {
    std::vector<std::uint8_t> exif; ///< TIFF data that fits into a JPEG.
    std::string xmp;                ///< A packet that does; empty when there is nothing to say.

    /// Where `keepsLocation` is off nothing is kept that may hold it: neither GPS nor the maker's notes.
    /// `thumbnail` is a JPEG of the new picture, or empty.
    [[nodiscard]] static CarriedMetadata of(const ImageWriter::Picture& picture, bool keepsLocation,
                                            std::string thumbnail, const std::stop_token& stop);
};

} // namespace kelvara
