#include "imaging/codecs/RawLayout.h"

#include "imaging/codecs/Cr3Layout.h"
#include "imaging/codecs/ExifBlock.h"
#include "imaging/codecs/JpegDecoder.h"
#include "imaging/codecs/TiffReader.h"
#include "imaging/codecs/TiffTags.h"

#include <algorithm>
#include <deque>
#include <string_view>

namespace kelvara {
namespace {

class TiffWalk {
public:
    explicit TiffWalk(TiffReader reader) : m_reader{std::move(reader)} {}

    RawLayout run() {
        m_pending.push_back(m_reader.firstDirectory());
        bool isFirst = true;
        while (!m_pending.empty()) {
            const auto directory = m_reader.directory(m_pending.front());
            m_pending.pop_front();
            if (!directory) continue;
            if (isFirst) visitFirst(*directory);
            isFirst = false;
            visit(*directory);
            for (const auto offset : m_reader.numbers(*directory, TiffTag::subDirectories))
                m_pending.push_back(offset);
            if (directory->next != 0) m_pending.push_back(directory->next);
        }
        if (!m_layout.size) m_layout.size = m_exifSize;
        return std::move(m_layout);
    }

private:
    void visitFirst(const TiffDirectory& directory) {
        if (const auto number = m_reader.number(directory, TiffTag::orientation)) {
            m_layout.orientation = Orientation{static_cast<int>(std::min(*number, 9U))};
        }
        const auto offset = m_reader.number(directory, TiffTag::exifDirectory);
        const auto exif = offset ? m_reader.directory(*offset) : std::nullopt;
        if (!exif) return;
        m_exifSize = m_reader.size(*exif, TiffTag::pixelWidth, TiffTag::pixelHeight);
        m_layout.isAdobeRGB = namesAdobeRGB(m_reader, *exif);
    }

    void visit(const TiffDirectory& directory) {
        if (isRawData(directory) || directory.find(TiffTag::cr2Slices)) {
            m_layout.isCut |= endsBeyondFile(directory, TiffTag::stripOffsets, TiffTag::stripByteCounts) ||
                              endsBeyondFile(directory, TiffTag::tileOffsets, TiffTag::tileByteCounts);
            const auto size = m_reader.size(directory, TiffTag::imageWidth, TiffTag::imageLength);
            if (size && (!m_layout.size || size->pixels() > m_layout.size->pixels())) m_layout.size = size;
        } else if (m_reader.number(directory, TiffTag::compression) != uncompressed) {
            addPreview(directory, m_reader.number(directory, TiffTag::stripOffsets), stripLength(directory));
        }
        addPreview(directory, m_reader.number(directory, TiffTag::jpegOffset),
                   m_reader.number(directory, TiffTag::jpegLength));
        if (const auto* entry = directory.find(TiffTag::panasonicPreview)) {
            addPreview(directory, static_cast<std::uint32_t>(entry->valueOffset), entry->count);
        }
    }

    void addPreview(const TiffDirectory& directory, std::optional<std::uint32_t> offset,
                    std::optional<std::uint32_t> length) {
        if (!offset || !length) return;
        auto preview = RawLayout::Preview::read(m_reader.data().part(*offset, *length));
        if (!preview) return;
        constexpr std::uint32_t adobeRGB = 3;
        const auto space = m_reader.number(directory, TiffTag::previewColorSpace);
        preview->isAdobeRGB = space ? *space == adobeRGB : m_layout.isAdobeRGB;
        m_layout.previews.push_back(std::move(*preview));
    }

    /// Empty for pictures in several strips, which no preview is.
    std::optional<std::uint32_t> stripLength(const TiffDirectory& directory) const {
        const auto lengths = m_reader.numbers(directory, TiffTag::stripByteCounts);
        return lengths.size() == 1 ? std::optional{lengths.front()} : std::nullopt;
    }

    bool endsBeyondFile(const TiffDirectory& directory, std::uint16_t offsets, std::uint16_t lengths) const {
        const auto offset = m_reader.lastNumber(directory, offsets);
        const auto length = m_reader.lastNumber(directory, lengths);
        constexpr std::uint32_t unknown = 0xFFFFFFFF; // RW2 files say elsewhere
        return offset && length && *offset != unknown &&
               std::uint64_t{*offset} + *length > m_reader.data().size();
    }

    bool isRawData(const TiffDirectory& directory) const {
        constexpr std::uint32_t colorFilterArray = 32803, linearRaw = 34892;
        const auto interpretation = m_reader.number(directory, TiffTag::photometricInterpretation);
        return interpretation == colorFilterArray || interpretation == linearRaw;
    }

    static constexpr std::uint32_t uncompressed = 1;

    TiffReader m_reader;
    std::deque<std::uint64_t> m_pending;
    RawLayout m_layout;
    std::optional<PixelSize> m_exifSize;
};

/// RAF: the position and length of its one preview stand at fixed places, most significant byte first.
RawLayout readRaf(const ByteRange& file) {
    constexpr std::uint64_t fields = 84;
    RawLayout layout;
    const auto bytes = file.bytes(fields, 8);
    if (bytes.empty()) return layout;
    const auto number = [&bytes](std::size_t at) {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < 4; ++i) value = value << 8 | bytes[at + i];
        return value;
    };
    auto preview = RawLayout::Preview::read(file.part(number(0), number(4)));
    if (!preview) return layout;
    const auto header = readJpegHeader(preview->jpeg);
    const auto exif =
        ExifBlock::read(ByteRange{ByteSource::ofMemory(header ? header->exif : std::vector<std::uint8_t>{})});
    layout.orientation = exif.orientation;
    layout.isAdobeRGB = preview->isAdobeRGB = exif.isAdobeRGB;
    layout.previews.push_back(std::move(*preview));
    return layout;
}

} // namespace

std::optional<RawLayout::Preview> RawLayout::Preview::read(ByteRange jpeg) {
    // The RAW data itself may be a JPEG too, of the lossless kind, which has no header that the decoder
    // knows.
    const auto header = readJpegHeader(jpeg);
    if (!header) return std::nullopt;
    return Preview{.jpeg = std::move(jpeg), .size = header->size};
}

RawLayout RawLayout::read(const ByteRange& file) {
    constexpr std::string_view rafSignature{"FUJIFILMCCD-RAW "}, cr3Signature{"ftypcrx "};
    const auto bytes = file.bytes(0, rafSignature.size());
    const std::string_view start{reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    if (start == rafSignature) return readRaf(file);
    if (!start.empty() && start.substr(4, cr3Signature.size()) == cr3Signature) return readCr3(file);
    auto reader = TiffReader::open(file);
    return reader ? TiffWalk{std::move(*reader)}.run() : RawLayout{};
}

} // namespace kelvara
