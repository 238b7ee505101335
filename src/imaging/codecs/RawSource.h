#pragma once

#include "imaging/codecs/ByteSource.h"
#include "imaging/codecs/ImageSource.h"

namespace kelvara {

/// Null when nothing in the file is understood.
[[nodiscard]] std::unique_ptr<ImageSource> openRaw(const FileURL& url, ByteRange bytes);

} // namespace kelvara
