#pragma once

#include "imaging/codecs/ByteSource.h"
#include "imaging/codecs/ImageSource.h"

namespace kelvara {

/// Null when `bytes` are no JPEG.
[[nodiscard]] std::unique_ptr<ImageSource> openJpeg(ByteRange bytes);

} // namespace kelvara
