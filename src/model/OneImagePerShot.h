#pragma once

#include "model/PhotoItem.h"

#include <span>
#include <vector>

namespace kelvara {

/// Of each shot (the items that share a stem key) the file that is best to make a picture of: the JPEG, else
/// the HEIF, else the RAW file; a video only where there is nothing else. They keep their order.
[[nodiscard]] std::vector<PhotoItem> oneImagePerShot(std::span<const PhotoItem> items);

} // namespace kelvara
