#pragma once

#include "model/FileURL.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kelvara {

/// A mounted volume, identified by its mount point.
struct VolumeInfo {
    FileURL url;
    std::string name;         ///< The volume's label, or the mount point's name when it has none.
    bool isRemovable = false; ///< Removable or ejectable; either suffices.
    std::optional<std::int64_t> totalCapacity;     ///< Bytes.
    std::optional<std::int64_t> availableCapacity; ///< Bytes.
    /// The folder that becomes the source when the volume is chosen: its "DCIM" folder where there is one,
    /// else its root.
    FileURL preferredSourceURL;

    friend bool operator==(const VolumeInfo&, const VolumeInfo&) = default;
};

} // namespace kelvara
