#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kelvara {

/// One line of the kernel's mount table, with its escapes undone. All texts are bytes.
struct MountEntry {
    unsigned major = 0; ///< The file system's device; major 0 stands for one that has no device of its own.
    unsigned minor = 0;
    std::string
        root; ///< The part of the file system that is mounted: "/" unless it is a bind or a subvolume.
    std::string mountPoint;
    std::string type;   ///< "ext4", "fuseblk".
    std::string source; ///< What was mounted: "/dev/sdb1", "tmpfs", "server:/share".

    friend bool operator==(const MountEntry&, const MountEntry&) = default;
};

/// Reads the format of /proc/self/mountinfo (proc(5)). A mount that another one covers and lines that are
/// none are left out.
[[nodiscard]] std::vector<MountEntry> parsedMountTable(std::string_view text);

/// The table in the file at `path`; empty where it can't be read. Does not block: the kernel answers from
/// memory and asks no file system.
[[nodiscard]] std::vector<MountEntry> readMountTable(const std::string& path = "/proc/self/mountinfo");

} // namespace kelvara
