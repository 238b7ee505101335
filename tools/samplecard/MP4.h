#pragma once

#include "samplecard/Picture.h"

#include <cstdint>
#include <string>

namespace kelvara::samplecard {

struct MP4Options {
    int width = 1280; ///< even
    int height = 720; ///< even
    double seconds = 2.4;
    int framesPerSecond = 25;
    std::int64_t time = 0; ///< the creation time, seconds since 1970
};

/// A pan over the picture, which must be larger than the video: H.264 where the library has an encoder for
/// it, else MPEG-4 Visual. Silent. Throws std::runtime_error.
std::string encodeMP4(const Picture& picture, const MP4Options& options);

} // namespace kelvara::samplecard
