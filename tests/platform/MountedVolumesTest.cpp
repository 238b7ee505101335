#include "platform/linux/MountedVolumes.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

TEST(MountedVolumesTest, mediaAreBrowsableWhereTheyAreMountedByHabit) {
    for (const auto* place :
         {"/media/me/CARD", "/run/media/me/CARD", "/mnt", "/mnt/disk", "/Volumes/Disk", "/var/mnt/d"}) {
        EXPECT_TRUE(isBrowsable(place, false)) << place;
        EXPECT_TRUE(isBrowsable(place, true)) << place;
        EXPECT_FALSE(isNeededBySystem(place)) << place;
    }
}

TEST(MountedVolumesTest, elsewhereOnlyARemovableDiskIs) {
    for (const auto* place : {"/home/me/card", "/data", "/mediathek", "/tmp/card"}) {
        EXPECT_TRUE(isBrowsable(place, true)) << place;
        EXPECT_FALSE(isBrowsable(place, false)) << place;
    }
}

TEST(MountedVolumesTest, theSystemAndHiddenFoldersNeverAre) {
    for (const auto* place : {"/", "/home", "/home/me", "/boot", "/boot/efi", "/efi", "/snap/core/1",
                              "/run/live", "/usr", "/var/lib/x"}) {
        EXPECT_FALSE(isBrowsable(place, true)) << place;
        EXPECT_TRUE(isNeededBySystem(place)) << place;
    }
    EXPECT_FALSE(isBrowsable("/media/me/.hidden", true));
    EXPECT_FALSE(isBrowsable("/media/.hidden/CARD", true));
}

TEST(MountedVolumesTest, theMountTableGivesTheDisksOnce) {
    const std::vector<MountEntry> entries{
        {8, 2, "/", "/", "ext4", "/dev/sda2"},
        {8, 1, "/", "/boot/efi", "vfat", "/dev/sda1"},
        {0, 30, "/", "/run", "tmpfs", "tmpfs"},
        {0, 31, "/", "/mnt/share", "nfs4", "server:/share"},
        {0, 32, "/", "/media/me/phone", "fuse.jmtpfs", "jmtpfs"},
        {7, 0, "/", "/snap/core/1", "squashfs", "/dev/loop0"},
        {8, 33, "/", "/mnt/Archive", "ext4", "/dev/sdc1"},
        {8, 33, "/", "/mnt/again", "ext4", "/dev/sdc1"},
        {8, 33, "/2024", "/mnt/bound", "ext4", "/dev/sdc1"},
        {0, 40, "/@", "/mnt/btrfs", "btrfs", "/dev/sdd"},
        {8, 17, "/", "/media/me/CARD", "vfat", "/dev/sdb1"},
        {8, 65, "/", "/media/me/PULLED", "vfat", "/dev/sde1"},
    };
    const auto isRemovable = [](const MountEntry& entry) -> std::optional<bool> {
        if (entry.source == "/dev/sde1") return std::nullopt;
        return entry.source == "/dev/sdb1";
    };
    const std::vector<MountedVolume> expected{{FileURL{"/mnt/Archive"}, "Archive", false},
                                              {FileURL{"/mnt/btrfs"}, "btrfs", false},
                                              {FileURL{"/media/me/CARD"}, "CARD", true}};
    EXPECT_EQ(mountedVolumes(entries, isRemovable), expected);
}

} // namespace
} // namespace kelvara
