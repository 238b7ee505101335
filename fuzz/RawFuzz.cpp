// Any bytes as a RAW file: its directories and previews, and its development.

#include "fuzz/Decode.h"
#include "imaging/codecs/RawSource.h"

using namespace kelvara;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::MemoryFile file{{data, size}};
    fuzz::decode(openRaw(file.url(), ByteRange{ByteSource::ofMemory({data, data + size})}).get());
    return 0;
}
