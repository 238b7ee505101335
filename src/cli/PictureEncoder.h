#pragma once

#include "imaging/Bitmap.h"

#include <optional>
#include <string>

namespace kelvara::cli {

/// The picture as the bytes of a JPEG, with its profile embedded. Empty when memory is short.
[[nodiscard]] std::optional<std::string> encodedJPEG(const Bitmap& picture);

/// The same as a PNG; the picture has to be in sRGB, which the file says.
[[nodiscard]] std::optional<std::string> encodedPNG(const Bitmap& picture);

} // namespace kelvara::cli
