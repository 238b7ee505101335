#pragma once

#include "imaging/Bitmap.h"
#include "imaging/Orientation.h"
#include "model/FileURL.h"

#include <memory>
#include <optional>
#include <stop_token>

namespace kelvara {

/// An opened image file. Its format is found by its content, whatever its name says. Bitmaps come out
/// upright, in the colour space that the file names. Used by one thread at a time; nothing is kept from call
/// to call but what opening has read.
class ImageSource {
public:
    virtual ~ImageSource() = default;

    /// Null when the file can't be read or is in no known format.
    [[nodiscard]] static std::unique_ptr<ImageSource> open(const FileURL& url);

    /// Of the image as stored, before it is turned by `orientation()`. Empty when the file doesn't tell.
    [[nodiscard]] virtual std::optional<PixelSize> pixelSize() const = 0;
    /// How the stored pixels are turned to be upright.
    [[nodiscard]] virtual Orientation orientation() const = 0;

    /// Whether the image has to be developed first.
    [[nodiscard]] virtual bool isSensorData() const { return false; }

    /// A preview that is stored in the file: the smallest that reaches `maximum`, else the largest; scaled
    /// down to `maximum` where given. Null when there is none.
    [[nodiscard]] virtual BitmapPtr storedPreview(std::optional<int> maximum,
                                                  const std::stop_token& stop) = 0;
    /// The image itself, its longest side at most `maximum` where given. A damaged file gives what can be
    /// decoded.
    [[nodiscard]] virtual BitmapPtr image(std::optional<int> maximum, const std::stop_token& stop) = 0;
    /// The same with 16 bits a channel where the file has more than eight, or scaling makes more of them.
    [[nodiscard]] virtual BitmapPtr deepImage(std::optional<int> maximum, const std::stop_token& stop) {
        return image(maximum, stop);
    }
};

/// Which of two stored previews serves a request better: the smallest that reaches `maximum`, else the
/// largest.
[[nodiscard]] bool isBetterPreview(PixelSize candidate, PixelSize best, std::optional<int> maximum);

} // namespace kelvara
