#include "imaging/codecs/RawLayout.h"

#include "imaging/codecs/ExifBlock.h"
#include "imaging/codecs/JpegDecoder.h"
#include "imaging/codecs/TiffReader.h"
#include "imaging/codecs/TiffTags.h"

#include <algorithm>
#include <deque>
#include <string_view>

namespace kelvara {
namespace {

std::optional<RawLayout::Preview> previewAt(const ByteRange& file, std::uint64_t offset,
                                            std::uint64_t length) {
    auto jpeg = file.part(offset, length);
    // The RAW data itself may be a JPEG too, of the lossless kind, which has no header that the decoder
    // knows.
    const auto header = readJpegHeader(jpeg);
    if (!header) return std::nullopt;
    return RawLayout::Preview{.jpeg = std::move(jpeg), .size = header->size};
}

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
        m_exifSize = sizeIn(*exif, TiffTag::pixelWidth, TiffTag::pixelHeight);
        m_layout.isAdobeRGB = namesAdobeRGB(m_reader, *exif);
    }

    void visit(const TiffDirectory& directory) {
        if (isRawData(directory)) {
            const auto size = sizeIn(directory, TiffTag::imageWidth, TiffTag::imageLength);
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
        auto preview = previewAt(m_reader.data(), *offset, *length);
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

    bool isRawData(const TiffDirectory& directory) const {
        constexpr std::uint32_t colorFilterArray = 32803, linearRaw = 34892;
        const auto interpretation = m_reader.number(directory, TiffTag::photometricInterpretation);
        return interpretation == colorFilterArray || interpretation == linearRaw;
    }

    std::optional<PixelSize> sizeIn(const TiffDirectory& directory, std::uint16_t width,
                                    std::uint16_t height) const {
        constexpr std::uint32_t largest = 1U << 20;
        const auto w = m_reader.number(directory, width);
        const auto h = m_reader.number(directory, height);
        if (!w || !h || *w == 0 || *h == 0 || *w > largest || *h > largest) return std::nullopt;
        return PixelSize{static_cast<int>(*w), static_cast<int>(*h)};
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
    auto preview = previewAt(file, number(0), number(4));
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

RawLayout RawLayout::read(const ByteRange& file) {
    constexpr std::string_view rafSignature{"FUJIFILMCCD-RAW "};
    const auto start = file.bytes(0, rafSignature.size());
    if (std::ranges::equal(start, rafSignature, {}, {},
                           [](char c) { return static_cast<std::uint8_t>(c); })) {
        return readRaf(file);
    }
    auto reader = TiffReader::open(file);
    return reader ? TiffWalk{std::move(*reader)}.run() : RawLayout{};
}

} // namespace kelvara
