#pragma once

#include "imaging/codecs/ImageSource.h"

namespace kelvara {

/// A video's poster frame as its image: the key frame at or before a tenth of its length, else the first that
/// can be decoded. Null when the file has no video that can be read.
[[nodiscard]] std::unique_ptr<ImageSource> openVideo(const FileURL& url);

} // namespace kelvara
