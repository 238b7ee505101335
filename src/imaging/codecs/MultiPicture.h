#pragma once

#include "imaging/codecs/ByteSource.h"

#include <vector>

namespace kelvara {

/// The large thumbnails behind a JPEG's own picture, as its Multi-Picture Format segment (CIPA DC-007) names
/// them; unchecked JPEGs. Panoramas, other views and all else that shows something different are left out.
[[nodiscard]] std::vector<ByteRange> multiPicturePreviews(const ByteRange& jpeg);

} // namespace kelvara
