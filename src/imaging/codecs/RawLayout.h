#pragma once

#include "imaging/Bitmap.h"
#include "imaging/Orientation.h"
#include "imaging/codecs/ByteSource.h"

#include <optional>
#include <vector>

namespace kelvara {

/// Where a RAW file keeps its previews, found by reading a few kilobytes of it: the directories of the
/// formats that are TIFF within, the boxes of CR3, and the fixed header of RAF.
struct RawLayout {
    struct Preview {
        ByteRange jpeg;
        PixelSize size; ///< As stored.
        bool isAdobeRGB = false;

        /// Empty when the bytes don't begin with a JPEG.
        [[nodiscard]] static std::optional<Preview> read(ByteRange jpeg);
    };

    std::vector<Preview> previews;
    std::optional<PixelSize> size;          ///< Of the RAW image itself, as stored.
    std::optional<Orientation> orientation; ///< Of the RAW image and its previews.
    bool isAdobeRGB = false;                ///< What the camera was set to; holds for previews.
    bool isCut = false;                     ///< Sensor data is named that lies beyond the file's end.

    /// All empty when the file is of another kind. Never follows a loop, and never leaves the file.
    [[nodiscard]] static RawLayout read(const ByteRange& file);
};

} // namespace kelvara
