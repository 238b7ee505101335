// Any bytes as the directories of a RAW file: previews lie within it, and are JPEGs of a size.

#include "imaging/codecs/ExifBlock.h"
#include "imaging/codecs/RawLayout.h"

#include <cstdlib>

using namespace kelvara;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ByteRange file{ByteSource::ofMemory({data, data + size})};
    for (const auto& preview : RawLayout::read(file).previews)
        if (preview.jpeg.size() > size || preview.size.isEmpty()) std::abort();
    if (ExifBlock::read(file).thumbnail.size() > size) std::abort();
    return 0;
}
