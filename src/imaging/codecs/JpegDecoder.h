#pragma once

#include "imaging/Bitmap.h"
#include "imaging/Orientation.h"
#include "imaging/codecs/ByteSource.h"

#include <cstdint>
#include <optional>
#include <stop_token>
#include <vector>

namespace kelvara {

/// What a JPEG says about itself before its pixels.
struct JpegHeader {
    PixelSize size; ///< As stored.
    int components = 0;
    std::vector<std::uint8_t> exif; ///< The TIFF block of its EXIF segment; empty when there is none.
    std::vector<std::uint8_t> icc;  ///< Empty when there is none.
};

struct JpegRequest {
    std::optional<int> maximum; ///< Most pixels of the longest side.
    Orientation orientation;    ///< Applied to the result.
    ColorProfilePtr profile;    ///< Of the stored numbers; null is sRGB, or the usual grey or ink.
    bool isDeep = false;        ///< 16 bits a channel where scaling makes something of them.
};

/// Empty when the bytes don't begin with a JPEG that can be decoded.
[[nodiscard]] std::optional<JpegHeader> readJpegHeader(const ByteRange& bytes);

/// A truncated or damaged JPEG gives the part that can be decoded, the rest grey. Null when nothing can, the
/// picture is too large, or `stop` was requested.
[[nodiscard]] BitmapPtr decodeJpeg(const ByteRange& bytes, const JpegRequest& request,
                                   const std::stop_token& stop);

} // namespace kelvara
