#pragma once

#include "imaging/codecs/RawLayout.h"

namespace kelvara {

/// What `RawLayout::read` tells, of a CR3 file: boxes as in films (ISO/IEC 14496-12), with EXIF blocks, a
/// thumbnail and a preview in boxes of the maker's, and the full-size JPEG as the only sample of a track.
[[nodiscard]] RawLayout readCr3(const ByteRange& file);

} // namespace kelvara
