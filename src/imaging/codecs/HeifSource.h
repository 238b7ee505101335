#pragma once

#include "imaging/codecs/ImageSource.h"

namespace kelvara {

/// Null when the file is no HEIF or AVIF that the library can open.
[[nodiscard]] std::unique_ptr<ImageSource> openHeif(const FileURL& url);

} // namespace kelvara
