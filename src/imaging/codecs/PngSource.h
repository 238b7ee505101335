#pragma once

#include "imaging/codecs/ByteSource.h"
#include "imaging/codecs/ImageSource.h"

namespace kelvara {

/// Null when `bytes` are no PNG. What is transparent in it appears as on white paper.
[[nodiscard]] std::unique_ptr<ImageSource> openPng(ByteRange bytes);

} // namespace kelvara
