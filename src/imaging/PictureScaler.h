#pragma once

#include "imaging/Bitmap.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

namespace kelvara {

/// A picture of size `wanted` from one of size `given`, which is at least as large, that comes row by row
/// from the top: `readRow(y, row)` writes `given.width` pixels of `format`, or returns false when there are
/// no more rows, and the rest becomes grey. Scales while the rows arrive, so no full-size copy is held, with
/// Lanczos' filter of three lobes, so that it is as sharp as it can be without aliasing. The result has the
/// rows' format, or `scaledFormat` where it is scaled: sums of 8 bits know more than 8 bits. Null when there
/// is no row at all, memory is short or `stop` was requested.
[[nodiscard]] std::unique_ptr<Bitmap>
collectRows(PixelSize given, PixelSize wanted, ColorProfilePtr profile, const std::stop_token& stop,
            const std::function<bool(int y, std::uint8_t* row)>& readRow,
            PixelFormat format = PixelFormat::bgrx8, std::optional<PixelFormat> scaledFormat = {});

/// `bitmap` scaled so that its longest side is at most `maximum`; itself when it is. Null when memory is
/// short.
[[nodiscard]] BitmapPtr scaledDown(BitmapPtr bitmap, int maximum);

} // namespace kelvara
