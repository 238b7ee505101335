#pragma once

#include "imaging/writing/ExifDraft.h"

#include <exiv2/exiv2.hpp>

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace kelvara {

/// What a camera's maker noted in a form of its own. It is carried byte for byte or not at all: what is in it
/// is addressed from its own start or from that of the block around it, so it keeps its place in the block.
struct MakerNote {
    bool isBigEndian = false; ///< As the block around it has to be.
    std::uint32_t offset = 0; ///< From the block's start; 0 for anywhere.
    std::vector<std::uint8_t> bytes;

    /// Empty when there is none, or none that can be carried.
    [[nodiscard]] static std::optional<MakerNote> of(const Exiv2::ExifData& exif);
    void addTo(ExifDraft& draft) const;

    /// Whether every value of the source's note is found in the new block as it was.
    [[nodiscard]] static bool reads(std::span<const std::uint8_t> block, const Exiv2::ExifData& source);
};

} // namespace kelvara
