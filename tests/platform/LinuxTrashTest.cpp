#include "platform/linux/LinuxTrash.h"

#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace kelvara {
namespace {

using Strings = std::vector<std::string>;

class LinuxTrashTest : public testing::Test {
protected:
    /// A volume of its own below the temporary folder; false where this user can't mount one.
    bool mountVolume() {
        const auto folder = m_disk.makeFolder("volume").path();
        m_isMounted = ::unshare(CLONE_NEWNS) == 0 &&
                      ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                      ::mount("tmpfs", folder.c_str(), "tmpfs", 0, nullptr) == 0;
        return m_isMounted;
    }
    void TearDown() override {
        if (m_isMounted) ::umount((m_disk / "volume").path().c_str());
    }
    std::string record(std::string_view name) const {
        return TemporaryFolder::read(m_disk.at(std::string{name} + ".trashinfo"));
    }
    [[nodiscard]] static std::string userName(const std::string& folder) {
        return folder + std::to_string(::getuid());
    }

    TemporaryFolder m_disk;
    LinuxTrash m_trash{m_disk / "data/Trash"};
    bool m_isMounted = false;
};

TEST_F(LinuxTrashTest, filesOfOneNameStandSideBySideWithTheirRecords) {
    const auto path = m_disk.url().path();
    m_disk.write("data/Trash/files/a b.NEF", "an orphan");
    const std::string longName(240, 'x');
    m_disk.write("1/" + longName + "\u00e4\u00e4.NEF", "long");
    for (const auto* folder : {"1", "2"}) {
        m_disk.write(folder + std::string{"/a b.NEF"}, folder);
        EXPECT_TRUE(m_trash.moveToTrash(m_disk.at(folder).child("a b.NEF")));
    }
    const auto foreign = m_disk.write("caf\xE9%.jpg", "x");
    EXPECT_TRUE(m_trash.moveToTrash(foreign));
    EXPECT_TRUE(m_trash.moveToTrash((m_disk / "1").child(longName + "\u00e4\u00e4.NEF")));
    EXPECT_EQ(m_disk.files("data/Trash/files"),
              (Strings{"a b.2.NEF", "a b.3.NEF", "a b.NEF", "caf\xE9%.jpg", longName + ".NEF"}));
    EXPECT_EQ(TemporaryFolder::read(m_disk / "data/Trash/files/a b.3.NEF"), "2");
    EXPECT_THAT(record("data/Trash/info/a b.3.NEF"),
                testing::MatchesRegex("\\[Trash Info\\]\nPath=" + path +
                                      "/2/a%20b.NEF\nDeletionDate=[0-9-]{10}T[0-9:]{8}\n"));
    EXPECT_THAT(record("data/Trash/info/caf\xE9%.jpg"),
                testing::HasSubstr("\nPath=" + path + "/caf%E9%25.jpg\n"));
    EXPECT_EQ(m_disk.files("data/Trash/info").size(), 4U); // the orphan has none
}

TEST_F(LinuxTrashTest, aLinkGoesItselfAndFoldersBehindLinksAreNamed) {
    const auto target = m_disk.write("real/a.jpg", "x");
    ASSERT_EQ(::symlink("real", (m_disk / "alias").path().c_str()), 0);
    ASSERT_EQ(::symlink("a.jpg", (m_disk / "real/link.jpg").path().c_str()), 0);
    EXPECT_TRUE(m_trash.moveToTrash(m_disk / "alias/link.jpg"));
    EXPECT_EQ(TemporaryFolder::read(target), "x");
    EXPECT_TRUE(std::filesystem::is_symlink((m_disk / "data/Trash/files/link.jpg").path()));
    EXPECT_THAT(record("data/Trash/info/link.jpg"), testing::HasSubstr("/real/link.jpg\n"));
}

TEST_F(LinuxTrashTest, whatCannotBeMovedStaysAndLeavesNoRecord) {
    const auto missing = m_trash.moveToTrash(m_disk / "none.jpg");
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error(),
              (FileError{m_disk / "none.jpg", std::make_error_code(std::errc::no_such_file_or_directory)}));
    m_disk.write("data/Trash", "no folder");
    const auto photo = m_disk.write("a.jpg", "x");
    const auto blocked = m_trash.moveToTrash(photo);
    ASSERT_FALSE(blocked);
    EXPECT_EQ(blocked.error().code, std::errc::not_a_directory);
    EXPECT_EQ(TemporaryFolder::read(photo), "x");
}

TEST_F(LinuxTrashTest, anotherVolumeHasATrashOfItsOwnWithPathsFromItsTop) {
    if (!mountVolume()) GTEST_SKIP() << "this user can't mount a volume";
    EXPECT_TRUE(m_trash.moveToTrash(m_disk.write("volume/DCIM/100/a.jpg", "x")));
    const auto own = userName("volume/.Trash-");
    EXPECT_EQ(m_disk.files(own), (Strings{"files/a.jpg", "info/a.jpg.trashinfo"}));
    EXPECT_THAT(record(own + "/info/a.jpg"), testing::HasSubstr("\nPath=DCIM/100/a.jpg\n"));
    EXPECT_FALSE(TemporaryFolder::exists(m_disk / "data/Trash/files/a.jpg"));

    // The one for all users counts only where nobody can take another's files out of it.
    const auto shared = m_disk.makeFolder("volume/.Trash").path();
    EXPECT_TRUE(m_trash.moveToTrash(m_disk.write("volume/b.jpg", "x")));
    EXPECT_TRUE(TemporaryFolder::exists(m_disk.at(own).child("files").child("b.jpg")));
    ASSERT_EQ(::chmod(shared.c_str(), 01777), 0);
    EXPECT_TRUE(m_trash.moveToTrash(m_disk.write("volume/c.jpg", "x")));
    EXPECT_TRUE(TemporaryFolder::exists(m_disk.at(userName("volume/.Trash/") + "/files/c.jpg")));

    // Mounted in a second place, the volume has a second top.
    const auto twice = m_disk.makeFolder("bound").path();
    ASSERT_EQ(::mount((m_disk / "volume/DCIM").path().c_str(), twice.c_str(), nullptr, MS_BIND, nullptr), 0);
    EXPECT_TRUE(m_trash.moveToTrash(m_disk.write("bound/100/d.jpg", "x")));
    EXPECT_THAT(record(userName("bound/.Trash-") + "/info/d.jpg"), testing::HasSubstr("\nPath=100/d.jpg\n"));
    ::umount(twice.c_str());
}

TEST_F(LinuxTrashTest, nothingIsErasedOrCopiedElsewhereInstead) {
    if (!mountVolume()) GTEST_SKIP() << "this user can't mount a volume";
    const auto volume = (m_disk / "volume").path();
    const auto photo = m_disk.write("volume/a.jpg", "x");
    const auto own = m_disk.at(userName("volume/.Trash-"));
    ASSERT_EQ(::symlink((m_disk / "data").path().c_str(), own.path().c_str()), 0);
    const auto lured = m_trash.moveToTrash(photo);
    ASSERT_FALSE(lured);
    EXPECT_EQ(lured.error().code, std::errc::not_a_directory);
    ::unlink(own.path().c_str());

    ASSERT_EQ(::mount(nullptr, volume.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    const auto locked = m_trash.moveToTrash(photo);
    ASSERT_FALSE(locked);
    EXPECT_EQ(locked.error(), (FileError{photo, std::make_error_code(std::errc::read_only_file_system)}));
    EXPECT_EQ(m_disk.files(), Strings{"volume/a.jpg"});
}

} // namespace
} // namespace kelvara
