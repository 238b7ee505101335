#include "platform/linux/DiskObjects.h"

#include "text/Localized.h"

#include <algorithm>

namespace kelvara {

namespace {

const DiskBlock* blockAt(const DiskObjects& objects, const std::string& path) {
    const auto found = std::find_if(objects.blocks.begin(), objects.blocks.end(),
                                    [&](const DiskBlock& block) { return block.path == path; });
    return found == objects.blocks.end() ? nullptr : &*found;
}

/// A decrypted block has no drive of its own: it is its backing block's. Null for a loop device and the like.
const DiskDrive* driveOf(const DiskObjects& objects, const DiskBlock& block) {
    const auto* backing = blockAt(objects, block.backingDevice);
    const auto& path = backing != nullptr && backing != &block ? backing->drive : block.drive;
    const auto found = std::find_if(objects.drives.begin(), objects.drives.end(),
                                    [&](const DiskDrive& drive) { return drive.path == path; });
    return found == objects.drives.end() ? nullptr : &*found;
}

bool isRemovable(const DiskDrive* drive) {
    return drive != nullptr && (drive->isRemovable || drive->isMediaRemovable || drive->isEjectable);
}

std::string nameOf(const DiskBlock& block) {
    if (!block.name.empty()) return block.name;
    return std::string{FileURL{block.mountPoints.empty() ? block.path : block.mountPoints.front()}.name()};
}

/// Whether the enclosure is still in use through another drive, as a reader with two cards is.
bool sharesPower(const DiskObjects& objects, const DiskDrive& drive) {
    if (drive.siblingID.empty()) return false;
    return std::any_of(objects.blocks.begin(), objects.blocks.end(), [&](const DiskBlock& block) {
        const auto* other = driveOf(objects, block);
        return other != nullptr && other != &drive && other->siblingID == drive.siblingID &&
               !block.mountPoints.empty();
    });
}

void addUnmounting(std::vector<EjectStep>& steps, const DiskBlock& block) {
    // Each call takes one of the places away.
    for (std::size_t i = 0; i < block.mountPoints.size(); ++i) {
        steps.push_back({EjectStep::Kind::unmount, block.path, nameOf(block)});
    }
}

} // namespace

std::vector<MountedVolume> mountedVolumes(const DiskObjects& objects) {
    std::vector<MountedVolume> volumes;
    for (const auto& block : objects.blocks) {
        if (block.isIgnored) continue;
        const bool removable = isRemovable(driveOf(objects, block));
        const auto place =
            std::find_if(block.mountPoints.begin(), block.mountPoints.end(),
                         [removable](const std::string& point) { return isBrowsable(point, removable); });
        if (place == block.mountPoints.end()) continue;
        FileURL url{*place};
        // A file system over several disks is mounted once and shown by each of them.
        const bool isListed = std::any_of(volumes.begin(), volumes.end(),
                                          [&](const MountedVolume& other) { return other.url == url; });
        if (isListed) continue;
        std::string name = block.name.empty() ? std::string{url.name()} : block.name;
        volumes.push_back({.url = std::move(url), .name = std::move(name), .isRemovable = removable});
    }
    return volumes;
}

Result<std::vector<EjectStep>, std::string> ejectSteps(const DiskObjects& objects, const FileURL& volume) {
    const auto asked =
        std::find_if(objects.blocks.begin(), objects.blocks.end(), [&](const DiskBlock& block) {
            return std::find(block.mountPoints.begin(), block.mountPoints.end(), volume.path()) !=
                   block.mountPoints.end();
        });
    if (asked == objects.blocks.end()) return Failure{localized("It isn't mounted any more.")};

    std::vector<EjectStep> steps;
    const auto* drive = driveOf(objects, *asked);
    if (!isRemovable(drive)) {
        addUnmounting(steps, *asked);
        return steps;
    }
    std::vector<EjectStep> locks;
    for (const auto& block : objects.blocks) {
        if (driveOf(objects, block) != drive) continue;
        if (std::any_of(block.mountPoints.begin(), block.mountPoints.end(), isNeededBySystem)) {
            return Failure{localized("The system is running from this disk.")};
        }
        addUnmounting(steps, block);
        if (blockAt(objects, block.backingDevice) != nullptr) {
            locks.push_back({EjectStep::Kind::lock, block.backingDevice, nameOf(block)});
        }
    }
    steps.insert(steps.end(), locks.begin(), locks.end());
    if (drive->isEjectable) steps.push_back({EjectStep::Kind::eject, drive->path, nameOf(*asked)});
    if (drive->canPowerOff && !drive->isMediaRemovable && !sharesPower(objects, *drive)) {
        steps.push_back({EjectStep::Kind::powerOff, drive->path, nameOf(*asked)});
    }
    return steps;
}

} // namespace kelvara
