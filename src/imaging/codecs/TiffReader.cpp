#include "imaging/codecs/TiffReader.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kelvara {
namespace {

constexpr std::size_t headerSize = 8;
constexpr std::size_t entrySize = 12;
constexpr std::size_t mostDirectories = 64;
constexpr std::uint32_t mostNumbers = 64;
constexpr std::uint32_t mostCharacters = 64;

/// Bytes of one value; 0 for types that nobody here reads.
std::size_t valueSize(std::uint16_t type) {
    switch (type) {
    case 1: // byte
    case 2: // text
    case 7: // undefined
        return 1;
    case 3:
        return 2; // short
    case 4:       // long
    case 13:      // directory
        return 4;
    default:
        return 0;
    }
}

} // namespace

const TiffDirectory::Entry* TiffDirectory::find(std::uint16_t tag) const {
    const auto found = std::ranges::find(entries, tag, &Entry::tag);
    return found == entries.end() ? nullptr : &*found;
}

std::optional<TiffReader> TiffReader::open(ByteRange data) {
    std::array<std::uint8_t, headerSize> header{};
    if (data.read(0, header) != header.size()) return std::nullopt;
    const bool isBigEndian = header[0] == 'M' && header[1] == 'M';
    if (!isBigEndian && !(header[0] == 'I' && header[1] == 'I')) return std::nullopt;
    TiffReader reader{std::move(data), isBigEndian};
    // 42 is TIFF; ORF files have "RO" or "RS" in its place, RW2 files 85.
    constexpr std::array<std::uint32_t, 4> versions{42, 0x4F52, 0x5352, 85};
    if (std::ranges::find(versions, reader.integer(&header[2], 2)) == versions.end()) return std::nullopt;
    reader.m_firstDirectory = reader.integer(&header[4], 4);
    return reader;
}

std::uint32_t TiffReader::integer(const std::uint8_t* bytes, std::size_t count) const {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < count; ++i) value = value << 8 | bytes[m_isBigEndian ? i : count - 1 - i];
    return value;
}

std::optional<TiffDirectory> TiffReader::directory(std::uint64_t offset) {
    if (offset < headerSize || m_given.size() >= mostDirectories) return std::nullopt;
    if (std::ranges::find(m_given, offset) != m_given.end()) return std::nullopt;
    m_given.push_back(offset);
    const auto countBytes = m_data.bytes(offset, 2);
    if (countBytes.empty()) return std::nullopt;
    const std::size_t count = integer(countBytes.data(), 2);
    const auto table = m_data.bytes(offset + 2, count * entrySize);
    if (table.empty()) return std::nullopt;
    TiffDirectory result;
    result.entries.reserve(count);
    for (std::size_t at = 0; at < table.size(); at += entrySize) {
        const auto* bytes = &table[at];
        TiffDirectory::Entry entry{.tag = static_cast<std::uint16_t>(integer(bytes, 2)),
                                   .type = static_cast<std::uint16_t>(integer(bytes + 2, 2)),
                                   .count = integer(bytes + 4, 4)};
        const bool isInside = std::uint64_t{entry.count} * valueSize(entry.type) <= 4;
        entry.valueOffset = isInside ? offset + 2 + at + 8 : integer(bytes + 8, 4);
        result.entries.push_back(entry);
    }
    // Some blocks end right after their only directory.
    const auto next = m_data.bytes(offset + 2 + table.size(), 4);
    if (!next.empty()) result.next = integer(next.data(), 4);
    return result;
}

std::vector<std::uint32_t> TiffReader::numbers(const TiffDirectory& directory, std::uint16_t tag) const {
    const auto* entry = directory.find(tag);
    const auto size = entry ? valueSize(entry->type) : 0;
    if (size == 0 || entry->type == 2) return {};
    const auto count = std::min(entry->count, mostNumbers);
    const auto bytes = m_data.bytes(entry->valueOffset, count * size);
    std::vector<std::uint32_t> result;
    for (std::size_t at = 0; at < bytes.size(); at += size) result.push_back(integer(&bytes[at], size));
    return result;
}

std::optional<std::uint32_t> TiffReader::number(const TiffDirectory& directory, std::uint16_t tag) const {
    const auto all = numbers(directory, tag);
    if (all.empty()) return std::nullopt;
    return all.front();
}

std::optional<std::uint32_t> TiffReader::lastNumber(const TiffDirectory& directory, std::uint16_t tag) const {
    const auto* entry = directory.find(tag);
    const auto size = entry ? valueSize(entry->type) : 0;
    if (size == 0 || entry->type == 2 || entry->count == 0) return std::nullopt;
    const auto bytes = m_data.bytes(entry->valueOffset + std::uint64_t{entry->count - 1} * size, size);
    if (bytes.empty()) return std::nullopt;
    return integer(bytes.data(), size);
}

std::optional<PixelSize> TiffReader::size(const TiffDirectory& directory, std::uint16_t widthTag,
                                          std::uint16_t heightTag) const {
    constexpr std::uint32_t largest = 1U << 20;
    const auto width = number(directory, widthTag);
    const auto height = number(directory, heightTag);
    if (!width || !height || *width == 0 || *height == 0 || *width > largest || *height > largest)
        return std::nullopt;
    return PixelSize{static_cast<int>(*width), static_cast<int>(*height)};
}

std::vector<std::uint32_t> TiffReader::words(const TiffDirectory& directory, std::uint16_t tag) const {
    constexpr std::size_t size = 4;
    const auto* entry = directory.find(tag);
    if (!entry || valueSize(entry->type) != 1) return {};
    const auto bytes =
        m_data.bytes(entry->valueOffset, std::min<std::size_t>(entry->count, mostNumbers * size));
    std::vector<std::uint32_t> result;
    for (std::size_t at = 0; at + size <= bytes.size(); at += size)
        result.push_back(integer(&bytes[at], size));
    return result;
}

std::string TiffReader::text(const TiffDirectory& directory, std::uint16_t tag) const {
    const auto* entry = directory.find(tag);
    if (!entry || entry->type != 2) return {};
    const auto bytes = m_data.bytes(entry->valueOffset, std::min(entry->count, mostCharacters));
    return {bytes.begin(), std::ranges::find(bytes, std::uint8_t{0})};
}

} // namespace kelvara
