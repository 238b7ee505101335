#pragma once

#include "imaging/Bitmap.h"
#include "imaging/codecs/ImageSource.h"
#include "model/FileURL.h"

#include <optional>
#include <stop_token>

/// Turns a file into a bitmap. Free of state: every function may run on any thread, gives null for whatever
/// can't be decoded, and returns soon after a stop was requested.
namespace kelvara::ImageDecoder {

/// The best bitmap whose longest side is at most `maximum`, or the file's own size. A RAW file's preview is
/// taken when it has at least nine tenths of the wanted size, as developing the RAW takes many times longer.
/// For the screen eight bits are enough.
[[nodiscard]] BitmapPtr decodeOriginal(const FileURL& url, std::optional<int> maximum,
                                       const std::stop_token& stop, Depth depth = Depth::eight);

/// The same for a new file. Of a RAW file it is a stored preview, never a development: that shows the photo
/// as its camera meant it. Null for videos.
[[nodiscard]] BitmapPtr decodeForExport(const FileURL& url, std::optional<int> maximum,
                                        const std::stop_token& stop, Depth depth);

/// The preview stored in the file, at most 512 pixels, without the black bars that it may have, prepared for
/// display. Never decodes the full image; null for RAW files, whose previews `decodeOriginal` uses, and
/// for videos.
[[nodiscard]] BitmapPtr embeddedThumbnail(const FileURL& url, const std::stop_token& stop);

/// `preview` cut to the shape of a picture of `fileSize` stored pixels, in the middle. Null when nothing is
/// left.
[[nodiscard]] BitmapPtr cropLetterbox(BitmapPtr preview, std::optional<PixelSize> fileSize,
                                      Orientation orientation);

/// The bitmap in `DisplayColorSpace::current()`; itself when it is. Null for null and when memory is short.
[[nodiscard]] BitmapPtr prepareForDisplay(BitmapPtr bitmap, const std::stop_token& stop);

} // namespace kelvara::ImageDecoder
