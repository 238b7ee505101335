#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace kelvara {

/// An EXIF block before it is laid out as TIFF data.
struct ExifDraft {
    /// Of a tag: its numbers in the block's byte order.
    struct Value {
        std::uint16_t type = 0; ///< TIFF's.
        std::uint32_t count = 0;
        std::vector<std::uint8_t> bytes;
    };
    using Directory = std::map<std::uint16_t, Value>; // TIFF wants them sorted

    bool isBigEndian = false;
    Directory image; ///< The first directory, without what leads to the others.
    Directory photo;
    Directory gps;
    /// Where the maker note in `photo` has to lie, as what it holds may be addressed from the block's start;
    /// 0 for anywhere. Never below 8.
    std::uint32_t makerNoteOffset = 0;
    std::string thumbnail; ///< A JPEG; may be empty.

    void setShort(Directory& directory, std::uint16_t tag, std::uint16_t number) const;
    void setLong(Directory& directory, std::uint16_t tag, std::uint32_t number) const;
    /// 72 dots an inch, unless the directory says something else.
    void completeResolution(Directory& directory) const;

    [[nodiscard]] std::vector<std::uint8_t> bytes() const;
};

} // namespace kelvara
