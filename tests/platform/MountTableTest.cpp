#include "platform/linux/MountTable.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace kelvara {
namespace {

struct Line {
    const char* title;
    const char* text;
    MountEntry expected;
};

class MountTableLineTest : public testing::TestWithParam<Line> {};

TEST_P(MountTableLineTest, isRead) {
    EXPECT_EQ(parsedMountTable(GetParam().text), std::vector{GetParam().expected});
}

INSTANTIATE_TEST_SUITE_P(
    Lines, MountTableLineTest,
    testing::Values(
        Line{"withoutOptionalFields",
             "26 1 8:17 / /media/me/CARD rw,nosuid - vfat /dev/sdb1 rw,uid=1000\n",
             {8, 17, "/", "/media/me/CARD", "vfat", "/dev/sdb1"}},
        Line{"withSeveralOptionalFields",
             "26 1 0:45 /@photos /mnt/p rw shared:1 master:2 propagate_from:3 - btrfs /dev/sdc rw",
             {0, 45, "/@photos", "/mnt/p", "btrfs", "/dev/sdc"}},
        Line{"escapedName",
             R"(26 1 8:17 / /media/me/My\040Card\011\134n\012\043 rw - exfat /dev/sdb1 rw)",
             {8, 17, "/", "/media/me/My Card\t\\n\n#", "exfat", "/dev/sdb1"}},
        Line{"backslashThatEscapesNothing",
             R"(26 1 8:17 / /m/a\04\999\777\ rw - exfat /dev/sdb1 rw)",
             {8, 17, "/", R"(/m/a\04\999\777\)", "exfat", "/dev/sdb1"}},
        Line{"notUTF8",
             "26 1 8:17 / /media/\xff\xfe\xc3 rw - vfat /dev/sdb1 rw",
             {8, 17, "/", "/media/\xff\xfe\xc3", "vfat", "/dev/sdb1"}},
        Line{"emptySource", "26 1 0:30 / /x rw - tmpfs  rw", {0, 30, "/", "/x", "tmpfs", ""}},
        Line{"dashAsName", "26 1 8:17 / /media/- rw - vfat - rw", {8, 17, "/", "/media/-", "vfat", "-"}}),
    [](const auto& row) { return row.param.title; });

TEST(MountTableTest, leavesOutWhatIsNoMount) {
    for (const auto* text :
         {"", "\n\n", "26 1 8:17 / /media rw", "26 1 8:17 / /media rw shared:1 vfat /dev/sdb1 rw x",
          "26 1 8 / /media rw - vfat /dev/sdb1 rw", "26 1 8:x / /media rw - vfat /dev/sdb1 rw",
          "26 1 99999999999:1 / /media rw - vfat /dev/sdb1 rw", "26 1 8:17 / media rw - vfat /dev/sdb1 rw",
          "26 1 8:17 / /media rw shared:1 a b - vfat"}) {
        EXPECT_TRUE(parsedMountTable(text).empty()) << text;
    }
}

TEST(MountTableTest, keepsTheMountThatIsOnTop) {
    const auto entries = parsedMountTable("26 1 8:17 / /mnt rw - vfat /dev/sdb1 rw\n"
                                          "27 1 8:33 / /media/c rw - vfat /dev/sdc1 rw\n"
                                          "28 26 8:49 / /mnt rw - ext4 /dev/sdd1 rw\n");
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[1].source, "/dev/sdd1");
}

TEST(MountTableTest, readsTheKernelsTable) {
    const auto entries = readMountTable();
    const auto isAbsolute = [](const MountEntry& entry) { return entry.mountPoint.starts_with('/'); };
    EXPECT_FALSE(entries.empty());
    EXPECT_TRUE(std::all_of(entries.begin(), entries.end(), isAbsolute));
    EXPECT_TRUE(readMountTable("/nowhere").empty());
}

} // namespace
} // namespace kelvara
