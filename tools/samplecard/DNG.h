#pragma once

#include "samplecard/Picture.h"
#include "samplecard/Shot.h"

#include <string>

namespace kelvara::samplecard {

struct DNGOptions {
    enum class Storage { sixteenBits, fourteenBitsPacked, lossless };

    Storage storage = Storage::lossless;
    int previewQuality = 88;
};

/// A raw file whose Bayer mosaic (RGGB) develops into the picture, with three JPEG previews: 256 pixels in
/// the first directory, 1,616 pixels and the full size in sub-directories; smaller pictures leave out what
/// would not be smaller than they are. Odd edges are cut off, a mosaic has whole cells only.
std::string encodeDNG(const Picture& upright, const Shot& shot, const DNGOptions& options);

} // namespace kelvara::samplecard
