#include "platform/linux/BlockDevices.h"

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace kelvara {

namespace {

namespace fs = std::filesystem;

std::string firstWord(const fs::path& file) {
    std::ifstream stream{file};
    std::string word;
    stream >> word;
    return word;
}

bool hangsOnUSB(const fs::path& device) {
    for (const auto& component : device) {
        const auto& name = component.native();
        if (name.size() > 3 && name.starts_with("usb") && name[3] >= '0' && name[3] <= '9') return true;
    }
    return false;
}

/// The device's folder in sysfs; for a decrypted or mapped volume that of the disk below it.
fs::path deviceFolder(const std::string& systemFolder, unsigned major, unsigned minor) {
    std::error_code error;
    const auto name = std::to_string(major) + ':' + std::to_string(minor);
    auto device = fs::canonical(fs::path{systemFolder} / "dev/block" / name, error);
    // A mapping of a mapping is the most that is found on a card or an external disk.
    for (int level = 0; level < 4 && !error; ++level) {
        const fs::directory_iterator below{device / "slaves", error};
        if (error || below == fs::directory_iterator{}) return device;
        device = fs::canonical(below->path(), error);
    }
    return error ? fs::path{} : device;
}

} // namespace

std::optional<bool> isRemovableDevice(const MountEntry& entry, const std::string& systemFolder) {
    auto major = entry.major;
    auto minor = entry.minor;
    if (major == 0) {
        // FUSE and btrfs mount under a device number of their own; the source names the real device.
        struct stat values {};
        if (::stat(entry.source.c_str(), &values) != 0 || !S_ISBLK(values.st_mode)) return std::nullopt;
        major = ::major(values.st_rdev);
        minor = ::minor(values.st_rdev);
    }
    auto disk = deviceFolder(systemFolder, major, minor);
    if (disk.empty()) return std::nullopt;
    std::error_code ignored;
    if (fs::exists(disk / "partition", ignored)) disk = disk.parent_path();
    return firstWord(disk / "removable") == "1" || hangsOnUSB(disk) ||
           firstWord(disk / "device/type") == "SD";
}

} // namespace kelvara
