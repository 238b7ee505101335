#include "cli/PictureReading.h"

#include "imaging/ImageDecoder.h"

#include <fmt/format.h>

namespace kelvara::cli {

Result<BitmapPtr, CommandError> pictureIn(const FileURL& file, std::optional<int> size,
                                          const std::stop_token& stop) {
    // Where no screen has been seen, the display's colours are sRGB.
    auto picture = ImageDecoder::prepareForDisplay(ImageDecoder::decodeOriginal(file, size, stop), stop);
    if (stop.stop_requested()) return Failure{CommandError{"Cancelled", ExitCode::interrupted}};
    if (picture) return picture;
    return Failure{CommandError{fmt::format(
        "Can't read {}. The file may be damaged or in an unsupported format.", printable(file.name()))}};
}

} // namespace kelvara::cli
