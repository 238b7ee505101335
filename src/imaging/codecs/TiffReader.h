#pragma once

#include "imaging/Bitmap.h"
#include "imaging/codecs/ByteSource.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kelvara {

/// One image file directory of TIFF 6.0: tags and where their values lie.
struct TiffDirectory {
    struct Entry {
        std::uint16_t tag = 0;
        std::uint16_t type = 0;
        std::uint32_t count = 0;
        std::uint64_t valueOffset = 0; ///< From the start of the TIFF data, also for values inside the entry.
    };

    std::vector<Entry> entries;
    std::uint64_t next = 0; ///< Offset of the following directory; 0 at the end.

    /// Null when the tag is missing.
    [[nodiscard]] const Entry* find(std::uint16_t tag) const;
};

/// Reads directories of TIFF data: a RAW file based on it, or an EXIF block. Every offset is checked, and
/// each directory is given only once, so that hostile data ends in fewer directories and never in a loop.
class TiffReader {
public:
    /// Empty when the data doesn't begin like a TIFF or one of the RAW formats that follow it.
    [[nodiscard]] static std::optional<TiffReader> open(ByteRange data);

    [[nodiscard]] std::uint64_t firstDirectory() const { return m_firstDirectory; }
    /// Empty when it lies outside, was given before, or too many were asked for.
    [[nodiscard]] std::optional<TiffDirectory> directory(std::uint64_t offset);

    /// The whole numbers of a tag, 64 at most; none when it is missing or of another type.
    [[nodiscard]] std::vector<std::uint32_t> numbers(const TiffDirectory& directory, std::uint16_t tag) const;
    [[nodiscard]] std::optional<std::uint32_t> number(const TiffDirectory& directory,
                                                      std::uint16_t tag) const;
    /// Of a list of any length.
    [[nodiscard]] std::optional<std::uint32_t> lastNumber(const TiffDirectory& directory,
                                                          std::uint16_t tag) const;
    /// Empty when a side is missing, 0 or absurd.
    [[nodiscard]] std::optional<PixelSize> size(const TiffDirectory& directory, std::uint16_t widthTag,
                                                std::uint16_t heightTag) const;
    /// The bytes of a tag taken as numbers of four bytes, 64 at most.
    [[nodiscard]] std::vector<std::uint32_t> words(const TiffDirectory& directory, std::uint16_t tag) const;
    /// A text of a few characters, up to its end mark.
    [[nodiscard]] std::string text(const TiffDirectory& directory, std::uint16_t tag) const;

    [[nodiscard]] const ByteRange& data() const { return m_data; }

private:
    TiffReader(ByteRange data, bool isBigEndian) : m_data{std::move(data)}, m_isBigEndian{isBigEndian} {}
    [[nodiscard]] std::uint32_t integer(const std::uint8_t* bytes, std::size_t count) const;

    ByteRange m_data;
    bool m_isBigEndian;
    std::uint64_t m_firstDirectory = 0;
    std::vector<std::uint64_t> m_given;
};

} // namespace kelvara
