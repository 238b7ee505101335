// Any bytes as a JPEG.

#include "fuzz/Decode.h"
#include "imaging/codecs/JpegSource.h"

using namespace kelvara;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::decode(openJpeg(ByteRange{ByteSource::ofMemory({data, data + size})}).get());
    return 0;
}
