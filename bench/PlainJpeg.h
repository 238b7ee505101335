#pragma once

#include "imaging/Bitmap.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kelvara::bench {

struct PlainPicture {
    PixelSize size;
    std::vector<std::uint8_t> pixels; ///< Blue, green, red and a fourth byte each.
};

/// The least that a thumbnail takes while every coefficient has to be decoded: the library's smallest scale
/// that reaches `maximum`, then a box of whole pixels averaged for each result pixel. Without a maximum the
/// whole picture. The file must be a sound JPEG.
PlainPicture decodePlainly(const std::string& path, int maximum = 0);

} // namespace kelvara::bench
