#include "platform/linux/BlockDevices.h"

#include "support/TemporaryFolder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace kelvara {
namespace {

/// A sysfs of the test's own.
class BlockDevicesTest : public testing::Test {
protected:
    /// Links device `number` to `folder` of the devices' tree.
    void addDevice(const std::string& number, const std::string& folder) const {
        m_sysfs.makeFolder(folder);
        m_sysfs.makeFolder("dev/block");
        std::filesystem::create_symlink("../../" + folder, m_sysfs.at("dev/block/" + number).path());
    }
    [[nodiscard]] std::optional<bool> isRemovable(unsigned major, unsigned minor) const {
        return isRemovableDevice({major, minor, "/", "/media/x", "vfat", "/dev/none"}, m_sysfs.url().path());
    }

    TemporaryFolder m_sysfs;
};

TEST_F(BlockDevicesTest, aPartitionIsAsRemovableAsItsDisk) {
    m_sysfs.write("devices/pci/block/sda/removable", "0\n");
    m_sysfs.write("devices/pci/block/sda/sda1/partition", "1\n");
    m_sysfs.write("devices/pci/block/sdb/removable", "1\n");
    m_sysfs.write("devices/pci/block/sdb/sdb1/partition", "1\n");
    addDevice("8:1", "devices/pci/block/sda/sda1");
    addDevice("8:17", "devices/pci/block/sdb/sdb1");
    addDevice("8:16", "devices/pci/block/sdb");
    EXPECT_EQ(isRemovable(8, 1), false);
    EXPECT_EQ(isRemovable(8, 17), true);
    EXPECT_EQ(isRemovable(8, 16), true);
    EXPECT_EQ(isRemovable(8, 33), std::nullopt);
}

TEST_F(BlockDevicesTest, disksOnUSBAndSDCardsCountThoughTheirMediumIsFixed) {
    m_sysfs.write("devices/pci/usb2/2-1/block/sdc/removable", "0\n");
    m_sysfs.write("devices/pci/usbhub/block/sdd/removable", "0\n");
    m_sysfs.write("devices/pci/mmc0/block/mmcblk0/removable", "0\n");
    m_sysfs.write("devices/pci/mmc0/block/mmcblk0/device/type", "SD\n");
    m_sysfs.write("devices/pci/mmc1/block/mmcblk1/device/type", "MMC\n");
    addDevice("8:32", "devices/pci/usb2/2-1/block/sdc");
    addDevice("8:48", "devices/pci/usbhub/block/sdd");
    addDevice("179:0", "devices/pci/mmc0/block/mmcblk0");
    addDevice("179:8", "devices/pci/mmc1/block/mmcblk1");
    EXPECT_EQ(isRemovable(8, 32), true);
    EXPECT_EQ(isRemovable(8, 48), false);
    EXPECT_EQ(isRemovable(179, 0), true);
    EXPECT_EQ(isRemovable(179, 8), false);
}

TEST_F(BlockDevicesTest, aMappedDeviceIsAsRemovableAsWhatItMaps) {
    m_sysfs.write("devices/pci/usb1/block/sdb/sdb1/partition", "1\n");
    m_sysfs.makeFolder("devices/virtual/block/dm-0/slaves");
    std::filesystem::create_symlink("../../../../pci/usb1/block/sdb/sdb1",
                                    m_sysfs.at("devices/virtual/block/dm-0/slaves/sdb1").path());
    addDevice("253:0", "devices/virtual/block/dm-0");
    EXPECT_EQ(isRemovable(253, 0), true);
}

TEST_F(BlockDevicesTest, withoutADeviceNumberTheSourceDecides) {
    EXPECT_EQ(isRemovable(0, 45), std::nullopt);
    EXPECT_EQ(isRemovableDevice({0, 45, "/", "/media/x", "fuseblk", "/dev/null"}, m_sysfs.url().path()),
              std::nullopt);
}

} // namespace
} // namespace kelvara
