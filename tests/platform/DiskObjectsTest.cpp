#include "platform/linux/DiskObjects.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

using Kind = EjectStep::Kind;

class DiskObjectsTest : public testing::Test {
protected:
    DiskDrive& addDrive(const std::string& path) {
        auto& drive = m_disks.drives.emplace_back();
        drive.path = path;
        return drive;
    }
    /// A slot of a card reader, as UDisks describes it.
    DiskDrive& addReader(const std::string& path) {
        auto& drive = addDrive(path);
        drive.isRemovable = drive.isMediaRemovable = drive.isEjectable = drive.canPowerOff = true;
        return drive;
    }
    DiskBlock& addBlock(const std::string& path, const std::string& drive, const std::string& name,
                        std::vector<std::string> mountPoints) {
        return m_disks.blocks.emplace_back(DiskBlock{.path = path,
                                                     .drive = drive,
                                                     .backingDevice = "/",
                                                     .name = name,
                                                     .mountPoints = std::move(mountPoints)});
    }
    [[nodiscard]] std::vector<EjectStep> steps(const char* volume) const {
        const auto result = ejectSteps(m_disks, FileURL{volume});
        return result ? result.value() : std::vector<EjectStep>{};
    }

    DiskObjects m_disks;
};

TEST_F(DiskObjectsTest, onlyMountedDisksOfPeopleAreListed) {
    addReader("/card");
    addDrive("/internal");
    addBlock("/sda1", "/internal", "EFI", {"/boot/efi"});
    addBlock("/sda2", "/internal", "", {"/"});
    addBlock("/sdc1", "/internal", "", {"/mnt/Archive"});
    addBlock("/sdc2", "/internal", "Scratch", {"/home/me/scratch"});
    addBlock("/sdb", "/card", "", {});
    addBlock("/sdb1", "/card", "KELVA_CARD", {"/media/me/KELVA_CARD"});
    addBlock("/sdb2", "/card", "VENDOR", {"/media/me/VENDOR"}).isIgnored = true;
    addBlock("/sdb3", "/card", "Own", {"/boot/card", "/home/me/card"});
    addBlock("/raid1", "/internal", "Pool", {"/mnt/Pool"});
    addBlock("/raid2", "/internal", "Pool", {"/mnt/Pool"});
    addBlock("/loop0", "/", "", {"/snap/core/1"});
    const std::vector<MountedVolume> expected{{FileURL{"/mnt/Archive"}, "Archive", false},
                                              {FileURL{"/media/me/KELVA_CARD"}, "KELVA_CARD", true},
                                              {FileURL{"/home/me/card"}, "Own", true},
                                              {FileURL{"/mnt/Pool"}, "Pool", false}};
    EXPECT_EQ(mountedVolumes(m_disks), expected);
}

TEST_F(DiskObjectsTest, anyFlagThatLetsItBeTakenAwayMakesItRemovable) {
    for (const auto flag : {&DiskDrive::isRemovable, &DiskDrive::isMediaRemovable, &DiskDrive::isEjectable}) {
        m_disks = {};
        addDrive("/drive").*flag = true;
        addBlock("/sdb1", "/drive", "", {"/media/me/x"});
        EXPECT_TRUE(mountedVolumes(m_disks).at(0).isRemovable);
    }
}

TEST_F(DiskObjectsTest, aCardIsUnmountedWholeAndItsReaderKeepsPower) {
    addReader("/card");
    addReader("/other");
    addBlock("/sdb1", "/card", "KELVA_CARD", {"/media/me/KELVA_CARD", "/mnt/same"});
    addBlock("/sdb2", "/card", "", {"/media/me/second"});
    addBlock("/sdb3", "/card", "unmounted", {});
    addBlock("/sdc1", "/other", "OTHER", {"/media/me/OTHER"});
    EXPECT_EQ(steps("/media/me/second"), (std::vector<EjectStep>{{Kind::unmount, "/sdb1", "KELVA_CARD"},
                                                                 {Kind::unmount, "/sdb1", "KELVA_CARD"},
                                                                 {Kind::unmount, "/sdb2", "second"},
                                                                 {Kind::eject, "/card", "second"}}));
}

TEST_F(DiskObjectsTest, anExternalDiskIsSwitchedOffUnlessItsEnclosureIsInUse) {
    auto& disk = addDrive("/disk");
    disk.isRemovable = disk.canPowerOff = true;
    disk.siblingID = "dock";
    addBlock("/sdb1", "/disk", "Backup", {"/media/me/Backup"});
    const EjectStep unmount{Kind::unmount, "/sdb1", "Backup"};
    EXPECT_EQ(steps("/media/me/Backup"),
              (std::vector<EjectStep>{unmount, {Kind::powerOff, "/disk", "Backup"}}));

    addDrive("/neighbour").siblingID = "dock";
    auto& other = addBlock("/sdc1", "/neighbour", "Other", {"/media/me/Other"});
    EXPECT_EQ(steps("/media/me/Backup"), std::vector<EjectStep>{unmount});
    other.mountPoints.clear();
    EXPECT_EQ(steps("/media/me/Backup").size(), 2U);
}

TEST_F(DiskObjectsTest, anEncryptedDiskIsClosedBeforeItIsEjected) {
    addReader("/stick");
    addBlock("/sdb1", "/stick", "", {});
    auto& clear = addBlock("/dm0", "/", "Secret", {"/media/me/Secret"});
    clear.backingDevice = "/sdb1";
    EXPECT_TRUE(mountedVolumes(m_disks).at(0).isRemovable);
    EXPECT_EQ(steps("/media/me/Secret"), (std::vector<EjectStep>{{Kind::unmount, "/dm0", "Secret"},
                                                                 {Kind::lock, "/sdb1", "Secret"},
                                                                 {Kind::eject, "/stick", "Secret"}}));
}

TEST_F(DiskObjectsTest, ofAFixedDiskOnlyTheVolumeIsUnmounted) {
    addDrive("/internal").canPowerOff = true;
    addBlock("/sda1", "/internal", "", {"/"});
    addBlock("/sda2", "/internal", "Archive", {"/mnt/Archive"});
    EXPECT_EQ(steps("/mnt/Archive"), (std::vector<EjectStep>{{Kind::unmount, "/sda2", "Archive"}}));
}

TEST_F(DiskObjectsTest, theDiskOfTheSystemAndAGoneVolumeAreRefused) {
    addReader("/live");
    addBlock("/sdb1", "/live", "Photos", {"/media/me/Photos"});
    addBlock("/sdb2", "/live", "", {"/"});
    const auto system = ejectSteps(m_disks, FileURL{"/media/me/Photos"});
    ASSERT_FALSE(system);
    EXPECT_EQ(system.error(), "The system is running from this disk.");
    const auto gone = ejectSteps(m_disks, FileURL{"/media/me/gone"});
    ASSERT_FALSE(gone);
    EXPECT_EQ(gone.error(), "It isn't mounted any more.");
}

} // namespace
} // namespace kelvara
