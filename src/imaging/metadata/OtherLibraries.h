#pragma once

#include "model/FileURL.h"

#include <exiv2/exiv2.hpp>

namespace kelvara {

/// EXIF of files whose container Exiv2 doesn't see through: the EXIF item that libheif finds, or what LibRaw
/// knows of the capture, as if the file said so. Empty when neither knows the file.
[[nodiscard]] Exiv2::ExifData exifByOtherLibraries(const FileURL& url);

} // namespace kelvara
