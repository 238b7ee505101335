// Any bytes as a PNG; the checksums of its chunks are kept right, without which nothing would come past them.

#include "fuzz/Decode.h"
#include "imaging/codecs/PngSource.h"

#include <zlib.h>

using namespace kelvara;

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

std::uint32_t number(const std::uint8_t* bytes) {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) value = value << 8 | bytes[i];
    return value;
}

void renewChecksums(std::uint8_t* data, std::size_t size) {
    constexpr std::size_t signature = 8, around = 12; // length, name and checksum of a chunk
    for (std::size_t at = signature; at + around <= size;) {
        const std::size_t length = number(data + at);
        if (length > size - at - around) return;
        const auto sum = ::crc32(0, data + at + 4, static_cast<uInt>(length + 4));
        for (std::size_t i = 0; i < 4; ++i)
            data[at + 8 + length + i] = static_cast<std::uint8_t>(sum >> (24 - 8 * i));
        at += around + length;
    }
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most,
                                               unsigned) {
    size = LLVMFuzzerMutate(data, size, most);
    renewChecksums(data, size);
    return size;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::decode(openPng(ByteRange{ByteSource::ofMemory({data, data + size})}).get());
    return 0;
}
