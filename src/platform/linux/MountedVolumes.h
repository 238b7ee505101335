#pragma once

#include "model/FileURL.h"
#include "platform/linux/MountTable.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvara {

/// A volume that a person may browse, before anybody has looked at the disk.
struct MountedVolume {
    FileURL url;
    std::string name;
    bool isRemovable = false;

    friend bool operator==(const MountedVolume&, const MountedVolume&) = default;
};

/// Whether a photographer wants the file system at `mountPoint` in a list of volumes. Below the folders made
/// for media everything is wanted; elsewhere a removable disk is, unless the system runs from it. The disk
/// of the system and home folders is not: it is browsed as folders. Hidden folders hide what they hold.
[[nodiscard]] bool isBrowsable(std::string_view mountPoint, bool isRemovable);

/// Whether the system stops working when `mountPoint` is unmounted.
[[nodiscard]] bool isNeededBySystem(std::string_view mountPoint);

/// The browsable ones among `entries`: file systems on block devices, each once, without bind mounts.
/// `isRemovable` tells about an entry's device, and nothing when the device is gone.
[[nodiscard]] std::vector<MountedVolume>
mountedVolumes(const std::vector<MountEntry>& entries,
               const std::function<std::optional<bool>(const MountEntry&)>& isRemovable);

} // namespace kelvara
