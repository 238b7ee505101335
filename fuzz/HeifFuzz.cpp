// Any bytes as a HEIF or AVIF.

#include "fuzz/Decode.h"
#include "imaging/codecs/HeifSource.h"

using namespace kelvara;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::MemoryFile file{{data, size}};
    fuzz::decode(openHeif(file.url()).get());
    return 0;
}
