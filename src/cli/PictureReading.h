#pragma once

#include "cli/MediaFolder.h"
#include "imaging/Bitmap.h"

#include <optional>
#include <stop_token>

namespace kelvara::cli {

/// The photo in a file, or a frame of the video, upright and in sRGB, its longest side at most `size`.
[[nodiscard]] Result<BitmapPtr, CommandError> pictureIn(const FileURL& file, std::optional<int> size,
                                                        const std::stop_token& stop);

} // namespace kelvara::cli
