#pragma once

#include "imaging/Bitmap.h"

#include <QImage>

namespace kelvara {

/// The bitmap's own memory as an image, kept for as long as the image or a copy of it lives. Null for null.
[[nodiscard]] QImage wrapped(const BitmapPtr& bitmap);

} // namespace kelvara
