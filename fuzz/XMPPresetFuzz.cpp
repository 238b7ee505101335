// Any bytes as an XMP preset.

#include "fuzz/LoadPreset.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kelvara::fuzz::loadPreset("/a.xmp", data, size);
    return 0;
}
