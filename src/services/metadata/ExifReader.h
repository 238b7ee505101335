#pragma once

#include "model/ExifInfo.h"
#include "model/FileURL.h"

#include <optional>
#include <stop_token>
#include <string>

namespace Exiv2 {
class ExifData;
class XmpData;
} // namespace Exiv2

namespace kelvara {

/// What the file says about how it was taken; empty fields for what it doesn't. Any thread.
[[nodiscard]] ExifInfo readExif(const FileURL& url, const std::stop_token& stop);

/// The lens as the maker's notes or a converter name it, for files whose EXIF doesn't. Empty when unknown.
[[nodiscard]] std::string auxiliaryLens(const Exiv2::ExifData& exif, const Exiv2::XmpData& xmp);

} // namespace kelvara
