#include "imaging/writing/ExifDraft.h"

#include "imaging/codecs/TiffTags.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace kelvara {
namespace {

constexpr std::uint16_t shortType = 3, longType = 4, rationalType = 5;
constexpr std::size_t headerSize = 8, entrySize = 12, inlineSize = 4;

void putNumber(std::uint8_t* to, std::uint32_t number, std::size_t bytes, bool isBigEndian) {
    for (std::size_t i = 0; i < bytes; ++i)
        to[isBigEndian ? bytes - 1 - i : i] = static_cast<std::uint8_t>(number >> (8 * i));
}

std::vector<std::uint8_t> longBytes(std::uint32_t number, bool isBigEndian) {
    std::vector<std::uint8_t> bytes(4);
    putNumber(bytes.data(), number, bytes.size(), isBigEndian);
    return bytes;
}

std::size_t sizeOf(const ExifDraft::Directory& directory) { return 2 + directory.size() * entrySize + 4; }

/// Lays the parts of a block one behind the other, around the maker note.
class Layout {
public:
    explicit Layout(const ExifDraft& draft) : m_isBigEndian{draft.isBigEndian}, m_bytes(headerSize) {
        const auto note = draft.photo.find(TiffTag::makerNote);
        if (draft.makerNoteOffset == 0 || note == draft.photo.end()) return;
        m_noteStart = draft.makerNoteOffset;
        m_noteEnd = m_noteStart + note->second.bytes.size();
    }

    /// Makes room, from an even place on as TIFF wants it.
    std::uint32_t take(std::size_t size) {
        auto start = m_end + m_end % 2;
        if (start < m_noteEnd && start + size > m_noteStart) start = m_noteEnd + m_noteEnd % 2;
        m_end = start + size;
        m_bytes.resize(std::max({m_bytes.size(), m_end, m_noteEnd}));
        return static_cast<std::uint32_t>(start);
    }
    template <typename Bytes> void copy(const Bytes& from, std::size_t to) {
        std::ranges::copy(from, m_bytes.begin() + static_cast<std::ptrdiff_t>(to));
    }
    /// Into the room that was made for it.
    void write(const ExifDraft::Directory& directory, std::uint32_t at, std::uint32_t next) {
        put(at, static_cast<std::uint32_t>(directory.size()), 2);
        std::size_t entry = at + 2;
        for (const auto& [tag, value] : directory) {
            put(entry, tag, 2);
            put(entry + 2, value.type, 2);
            put(entry + 4, value.count, 4);
            if (value.bytes.size() <= inlineSize)
                copy(value.bytes, entry + 8);
            else
                put(entry + 8, place(tag, value), 4);
            entry += entrySize;
        }
        put(entry, next, 4);
    }
    [[nodiscard]] std::vector<std::uint8_t> finish(std::uint32_t first) && {
        constexpr std::uint32_t magic = 42;
        m_bytes[0] = m_bytes[1] = m_isBigEndian ? 'M' : 'I';
        put(2, magic, 2);
        put(4, first, 4);
        return std::move(m_bytes);
    }

private:
    void put(std::size_t at, std::uint32_t number, std::size_t bytes) {
        putNumber(m_bytes.data() + at, number, bytes, m_isBigEndian);
    }
    std::uint32_t place(std::uint16_t tag, const ExifDraft::Value& value) {
        const bool isFixed = tag == TiffTag::makerNote && m_noteEnd > 0;
        const auto at = isFixed ? static_cast<std::uint32_t>(m_noteStart) : take(value.bytes.size());
        copy(value.bytes, at);
        return at;
    }

    bool m_isBigEndian;
    std::vector<std::uint8_t> m_bytes;
    std::size_t m_end = headerSize;
    std::size_t m_noteStart = 0;
    std::size_t m_noteEnd = 0; // 0 where the note may lie anywhere
};

} // namespace

void ExifDraft::setShort(Directory& directory, std::uint16_t tag, std::uint16_t number) const {
    std::vector<std::uint8_t> bytes(2);
    putNumber(bytes.data(), number, bytes.size(), isBigEndian);
    directory[tag] = {shortType, 1, std::move(bytes)};
}

void ExifDraft::setLong(Directory& directory, std::uint16_t tag, std::uint32_t number) const {
    directory[tag] = {longType, 1, longBytes(number, isBigEndian)};
}

void ExifDraft::completeResolution(Directory& directory) const {
    constexpr std::uint16_t horizontal = 0x011A, vertical = 0x011B, unit = 0x0128, inches = 2;
    auto bytes = longBytes(72, isBigEndian);
    std::ranges::copy(longBytes(1, isBigEndian), std::back_inserter(bytes));
    for (const auto tag : {horizontal, vertical}) directory.try_emplace(tag, Value{rationalType, 1, bytes});
    if (!directory.contains(unit)) setShort(directory, unit, inches);
}

std::vector<std::uint8_t> ExifDraft::bytes() const {
    constexpr std::uint16_t compressionOfJpeg = 6;
    Directory first = image, second;
    setLong(first, TiffTag::exifDirectory, 0);
    if (!gps.empty()) setLong(first, TiffTag::gpsDirectory, 0);
    if (!thumbnail.empty()) {
        setShort(second, TiffTag::compression, compressionOfJpeg);
        completeResolution(second);
        setLong(second, TiffTag::jpegOffset, 0);
        setLong(second, TiffTag::jpegLength, static_cast<std::uint32_t>(thumbnail.size()));
    }
    Layout layout{*this};
    const auto takeFor = [&](const Directory& directory) {
        return directory.empty() ? 0 : layout.take(sizeOf(directory));
    };
    const auto firstAt = layout.take(sizeOf(first)), photoAt = layout.take(sizeOf(photo));
    const auto gpsAt = takeFor(gps), secondAt = takeFor(second);
    setLong(first, TiffTag::exifDirectory, photoAt);
    if (!gps.empty()) setLong(first, TiffTag::gpsDirectory, gpsAt);
    layout.write(first, firstAt, secondAt);
    layout.write(photo, photoAt, 0);
    if (!gps.empty()) layout.write(gps, gpsAt, 0);
    if (!second.empty()) {
        const auto thumbnailAt = layout.take(thumbnail.size());
        layout.copy(thumbnail, thumbnailAt);
        setLong(second, TiffTag::jpegOffset, thumbnailAt);
        layout.write(second, secondAt, 0);
    }
    return std::move(layout).finish(firstAt);
}

} // namespace kelvara
