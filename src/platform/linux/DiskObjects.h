#pragma once

#include "model/Result.h"
#include "platform/linux/MountedVolumes.h"

#include <string>
#include <vector>

namespace kelvara {

/// A drive as UDisks describes it: a reader's slot, a stick, a disk. Fields as in
/// org.freedesktop.UDisks2.Drive.
struct DiskDrive {
    std::string path; ///< Its object on the bus.
    bool isRemovable = false;
    bool isMediaRemovable = false; ///< The medium comes out and the drive stays: a card reader.
    bool isEjectable = false;
    bool canPowerOff = false;
    std::string siblingID; ///< Drives of one enclosure share it; empty for none.
};

/// A disk or a partition, fields as in org.freedesktop.UDisks2.Block and Filesystem.
struct DiskBlock {
    std::string path;
    std::string drive;         ///< "/" for none.
    std::string backingDevice; ///< The encrypted block that this one shows decrypted; "/" for none.
    std::string name;          ///< The label; may be empty.
    bool isIgnored = false;    ///< Kept from people by the system's rules: an EFI partition, a vendor's.
    std::vector<std::string> mountPoints;
};

struct DiskObjects {
    std::vector<DiskDrive> drives;
    std::vector<DiskBlock> blocks;
};

/// The volumes that a person may browse; see `isBrowsable`.
[[nodiscard]] std::vector<MountedVolume> mountedVolumes(const DiskObjects& objects);

/// One call on the way to an ejected disk.
struct EjectStep {
    enum class Kind { unmount, lock, eject, powerOff };
    Kind kind = Kind::unmount;
    std::string object; ///< The object to call.
    std::string name;   ///< What a person calls it.

    friend bool operator==(const EjectStep&, const EjectStep&) = default;
};

/// What ejecting takes: a removable disk is unmounted with all of its partitions, closed where it is
/// encrypted, ejected, and switched off where nothing else needs its power; of a fixed disk only the volume
/// is unmounted. A reader keeps its power, or it would not see the next card.
///
/// Fails with a sentence when the volume is not mounted any more, or the system runs from the same disk.
[[nodiscard]] Result<std::vector<EjectStep>, std::string> ejectSteps(const DiskObjects& objects,
                                                                     const FileURL& volume);

} // namespace kelvara
