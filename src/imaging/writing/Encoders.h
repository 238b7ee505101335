#pragma once

#include "imaging/Bitmap.h"

#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace kelvara {

/// What a file holds besides the picture's pixels; what is empty is left out.
struct EmbeddedBlocks {
    ColorProfilePtr profile;
    std::vector<std::uint8_t> exif; ///< TIFF data.
    std::string xmp;                ///< A packet.
};

// Each gives the bytes of a file, empty when memory is short, the library gave up or `stop` was requested. A
// bitmap of more bits than the file has is dithered, always in the same way. `quality` is 0 to 1.

/// With all of the colour from 0.9 on, below with half of it each way.
[[nodiscard]] std::optional<std::string>
encodedJpeg(const Bitmap& image, double quality, const EmbeddedBlocks& blocks, const std::stop_token& stop);

/// With as many bits a channel as `format` has.
[[nodiscard]] std::optional<std::string> encodedPng(const Bitmap& image, PixelFormat format,
                                                    const EmbeddedBlocks& blocks,
                                                    const std::stop_token& stop);

/// With 8 bits a channel, or 10 for `bgrx16`. Takes seconds, of which a stop only ends the first, and much
/// memory, so it lets the picture go before; not null.
[[nodiscard]] std::optional<std::string> encodedHeif(BitmapPtr image, PixelFormat format, double quality,
                                                     const EmbeddedBlocks& blocks,
                                                     const std::stop_token& stop);

} // namespace kelvara
