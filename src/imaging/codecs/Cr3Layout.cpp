#include "imaging/codecs/Cr3Layout.h"

#include "imaging/codecs/ExifBlock.h"
#include "imaging/codecs/TiffReader.h"
#include "imaging/codecs/TiffTags.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

namespace kelvara {
namespace {

using Identifier = std::array<std::uint8_t, 16>;
constexpr Identifier metadataBoxes{0x85, 0xC0, 0xB6, 0x87, 0x82, 0x0F, 0x11, 0xE0,
                                   0x81, 0x11, 0xF4, 0xCE, 0x46, 0x2B, 0x6A, 0x48};
constexpr Identifier previewBoxes{0xEA, 0xF4, 0x2B, 0x5E, 0x1C, 0x98, 0x4B, 0x88,
                                  0xB9, 0xFB, 0xB7, 0xDC, 0x40, 0x6E, 0x4D, 0x16};

/// Most significant byte first; 0 beyond the end.
std::uint64_t numberAt(const ByteRange& range, std::uint64_t offset, std::size_t count) {
    std::uint64_t value = 0;
    for (const auto byte : range.bytes(offset, count)) value = value << 8 | byte;
    return value;
}

struct Box {
    std::string type;
    ByteRange content;
};

std::vector<Box> boxesIn(const ByteRange& range) {
    constexpr std::size_t mostBoxes = 64;
    std::vector<Box> result;
    std::uint64_t at = 0;
    while (result.size() < mostBoxes) {
        const auto type = range.bytes(at + 4, 4);
        if (type.empty()) break;
        std::uint64_t header = 8;
        auto length = numberAt(range, at, 4);
        if (length == 1) { // too long for four bytes
            header = 16;
            length = numberAt(range, at + 8, 8);
        }
        if (length == 0) length = range.size() - at; // to the end
        if (length < header) break;
        result.push_back({{type.begin(), type.end()}, range.part(at + header, length - header)});
        if (length > range.size() - at) break;
        at += length;
    }
    return result;
}

/// Empty when there is none.
ByteRange boxIn(const ByteRange& range, std::string_view type) {
    const auto boxes = boxesIn(range);
    const auto found = std::ranges::find(boxes, type, &Box::type);
    return found == boxes.end() ? ByteRange{} : found->content;
}

bool hasIdentifier(const ByteRange& content, const Identifier& identifier) {
    return std::ranges::equal(content.bytes(0, identifier.size()), identifier);
}

/// Of a box that has a few fields, by version, before the JPEG.
ByteRange jpegIn(const ByteRange& content) {
    constexpr std::array<std::uint8_t, 3> start{0xFF, 0xD8, 0xFF};
    const auto bytes = content.bytes(0, std::min<std::uint64_t>(content.size(), 64));
    const auto found = std::ranges::search(bytes, start);
    return content.part(static_cast<std::uint64_t>(found.begin() - bytes.begin()), content.size());
}

class Cr3Walk {
public:
    explicit Cr3Walk(ByteRange file) : m_file{std::move(file)} {}

    RawLayout run() {
        for (const auto& [type, content] : boxesIn(m_file)) {
            if (type == "moov") visitMovie(content);
            if (type != "uuid" || !hasIdentifier(content, previewBoxes)) continue;
            constexpr std::uint64_t fields = sizeof(Identifier) + 8;
            addPreview(jpegIn(boxIn(content.part(fields, content.size()), "PRVW")));
        }
        for (auto& preview : m_layout.previews) preview.isAdobeRGB = m_layout.isAdobeRGB;
        return std::move(m_layout);
    }

private:
    void visitMovie(const ByteRange& movie) {
        for (const auto& [type, content] : boxesIn(movie)) {
            if (type == "uuid" && hasIdentifier(content, metadataBoxes))
                visitMetadata(content.part(sizeof(Identifier), content.size()));
            if (type == "trak") addPreview(sampleOf(content));
        }
    }

    void visitMetadata(const ByteRange& metadata) {
        for (const auto& [type, content] : boxesIn(metadata)) {
            if (type == "THMB") addPreview(jpegIn(content));
            if (!type.starts_with("CMT")) continue;
            auto reader = TiffReader::open(content);
            if (!reader) continue;
            if (const auto directory = reader->directory(reader->firstDirectory()))
                visitDirectory(type.back(), *reader, *directory);
        }
    }

    /// The blocks are numbered: the picture's first directory, its EXIF directory, the maker's own.
    void visitDirectory(char number, TiffReader& reader, const TiffDirectory& directory) {
        constexpr std::uint16_t makersColorSpace = 0x00B4;
        constexpr std::uint32_t adobeRGB = 2;
        if (number == '1') {
            if (const auto value = reader.number(directory, TiffTag::orientation))
                m_layout.orientation = Orientation{static_cast<int>(std::min(*value, 9U))};
        } else if (number == '2') {
            m_layout.size = reader.size(directory, TiffTag::pixelWidth, TiffTag::pixelHeight);
            m_layout.isAdobeRGB |= namesAdobeRGB(reader, directory);
        } else if (number == '3') {
            m_layout.isAdobeRGB |= reader.number(directory, makersColorSpace) == adobeRGB;
        }
    }

    /// A track's first sample: of one track the full-size JPEG, of the others sensor data.
    ByteRange sampleOf(const ByteRange& track) {
        const auto table = boxIn(boxIn(boxIn(track, "mdia"), "minf"), "stbl");
        const auto sizes = boxIn(table, "stsz");
        const auto common = numberAt(sizes, 4, 4);
        const auto length = common > 0 ? common : numberAt(sizes, 12, 4);
        const auto wide = boxIn(table, "co64");
        const auto offset = wide.isEmpty() ? numberAt(boxIn(table, "stco"), 8, 4) : numberAt(wide, 8, 8);
        if (offset == 0) return {};
        m_layout.isCut |= offset > m_file.size() || length > m_file.size() - offset;
        return m_file.part(offset, length);
    }

    void addPreview(const ByteRange& jpeg) {
        if (auto preview = RawLayout::Preview::read(jpeg)) m_layout.previews.push_back(std::move(*preview));
    }

    ByteRange m_file;
    RawLayout m_layout;
};

} // namespace

RawLayout readCr3(const ByteRange& file) { return Cr3Walk{file}.run(); }

} // namespace kelvara
