#pragma once

#include "platform/linux/MountTable.h"

#include <optional>
#include <string>

namespace kelvara {

/// Whether a person can take the disk of a mounted device away, as the kernel tells: its medium comes out, or
/// it hangs on USB, or it is an SD card. Empty when the device is gone. `systemFolder` is where sysfs is
/// mounted. Does not block: device nodes and sysfs are answered from memory.
[[nodiscard]] std::optional<bool> isRemovableDevice(const MountEntry& entry,
                                                    const std::string& systemFolder = "/sys");

} // namespace kelvara
