// Any bytes as a photo: neither opening it, nor its previews, nor a small picture of it does harm.

#include "imaging/codecs/JpegSource.h"
#include "imaging/codecs/PngSource.h"
#include "imaging/codecs/RawLayout.h"

#include <cstdlib>

namespace {

using namespace kelvara;

constexpr int side = 48;

void check(const BitmapPtr& bitmap) {
    if (bitmap && bitmap->size().longestSide() > side) std::abort();
}

void decode(const std::unique_ptr<ImageSource>& source) {
    if (!source) return;
    check(source->storedPreview(side, {}));
    check(source->image(side, {}));
    check(source->deepImage(side, {}));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ByteRange bytes{ByteSource::ofMemory({data, data + size})};
    decode(openJpeg(bytes));
    decode(openPng(bytes));
    for (const auto& preview : RawLayout::read(bytes).previews) decode(openJpeg(preview.jpeg));
    return 0;
}
