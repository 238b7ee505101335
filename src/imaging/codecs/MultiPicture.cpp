#include "imaging/codecs/MultiPicture.h"

#include "imaging/codecs/TiffReader.h"
#include "imaging/codecs/TiffTags.h"

#include <algorithm>
#include <string_view>

namespace kelvara {
namespace {

/// The data behind the signature of the segment, reaching to the file's end, as its offsets count from there.
ByteRange multiPictureData(const ByteRange& jpeg) {
    constexpr std::string_view signature{"MPF\0", 4};
    constexpr std::uint8_t mark = 0xFF, startOfScan = 0xDA, application2 = 0xE2;
    constexpr int mostSegments = 200;
    std::uint64_t at = 2;
    for (int i = 0; i < mostSegments; ++i) {
        const auto start = jpeg.bytes(at, 4 + signature.size());
        if (start.empty() || start[0] != mark || start[1] == startOfScan) break;
        if (start[1] == mark) { // padding
            ++at;
            continue;
        }
        if (start[1] == application2 && std::equal(signature.begin(), signature.end(), start.begin() + 4))
            return jpeg.part(at + 4 + signature.size(), jpeg.size());
        at += 2 + (std::uint64_t{start[2]} << 8 | start[3]);
    }
    return {};
}

bool isLargeThumbnail(std::uint32_t attribute) {
    constexpr std::uint32_t formatMask = 0x07000000, kindMask = 0x00FF0000, largeThumbnail = 0x00010000;
    return (attribute & formatMask) == 0 && (attribute & kindMask) == largeThumbnail;
}

} // namespace

std::vector<ByteRange> multiPicturePreviews(const ByteRange& jpeg) {
    std::vector<ByteRange> result;
    const auto data = multiPictureData(jpeg);
    auto reader = TiffReader::open(data);
    if (!reader) return result;
    const auto index = reader->directory(reader->firstDirectory());
    if (!index) return result;
    // Four words for each picture: what it is, length, offset, and two numbers of pictures that belong to it.
    const auto words = reader->words(*index, TiffTag::multiPictureEntries);
    for (std::size_t at = 0; at + 4 <= words.size(); at += 4) {
        const auto length = words[at + 1], offset = words[at + 2];
        if (offset > 0 && isLargeThumbnail(words[at])) result.push_back(data.part(offset, length));
    }
    return result;
}

} // namespace kelvara
