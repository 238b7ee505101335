#pragma once

#include "imaging/Bitmap.h"
#include "imaging/Orientation.h"
#include "model/FileURL.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

class LibRaw;

namespace kelvara {

/// A RAW file as LibRaw sees it, for what the preview locator doesn't find, and for developing the image
/// itself. One thread at a time.
class RawDeveloper {
public:
    /// Null when the library doesn't know the file.
    [[nodiscard]] static std::unique_ptr<RawDeveloper> open(const FileURL& url);
    ~RawDeveloper();
    RawDeveloper(const RawDeveloper&) = delete;
    RawDeveloper& operator=(const RawDeveloper&) = delete;

    /// Before it is turned by `orientation()`.
    [[nodiscard]] PixelSize size() const;
    [[nodiscard]] Orientation orientation() const;

    /// The file's largest preview: either a JPEG or pixels, as stored. Both empty when there is none.
    struct Preview {
        std::vector<std::uint8_t> jpeg;
        BitmapPtr bitmap;
    };
    [[nodiscard]] Preview preview();

    struct Development {
        BitmapPtr bitmap;       ///< In sRGB, not turned; null when it failed or was stopped.
        bool isDamaged = false; ///< The library met broken data and went on.
    };
    /// The RAW image developed with the camera's white balance, its longest side at most `maximum` where
    /// given; a quarter of the pixels and time where that suffices. Once per object.
    [[nodiscard]] Development develop(std::optional<int> maximum, PixelFormat format,
                                      const std::stop_token& stop);

private:
    explicit RawDeveloper(std::unique_ptr<LibRaw> library);

    std::unique_ptr<LibRaw> m_library;
};

} // namespace kelvara
