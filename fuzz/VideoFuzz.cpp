// Any bytes as a video.

#include "fuzz/Decode.h"
#include "imaging/codecs/VideoSource.h"

using namespace kelvara;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::MemoryFile file{{data, size}};
    fuzz::decode(openVideo(file.url()).get());
    return 0;
}
