#include "platform/linux/MountedVolumes.h"

#include <algorithm>
#include <array>

namespace kelvara {

namespace {

/// With what lies below them. The last three are where image-based systems keep the first three.
constexpr std::array<std::string_view, 7> mediaPlaces{"/media",     "/run/media", "/mnt",          "/Volumes",
                                                      "/var/media", "/var/mnt",   "/var/run/media"};

/// With what lies below them, but for the places of media.
constexpr std::array<std::string_view, 17> systemPlaces{"/boot", "/dev", "/efi",     "/etc",  "/gnu", "/lib",
                                                        "/nix",  "/opt", "/ostree",  "/proc", "/run", "/snap",
                                                        "/sys",  "/srv", "/sysroot", "/usr",  "/var"};

/// Without what lies below them: a disk may well be mounted in somebody's home folder.
constexpr std::array<std::string_view, 4> systemFolders{"/", "/home", "/root", "/tmp"};

bool isWithin(std::string_view path, std::string_view place) {
    return path.starts_with(place) && (path.size() == place.size() || path[place.size()] == '/');
}

template <typename Places> bool isWithinAny(std::string_view path, const Places& places) {
    return std::any_of(places.begin(), places.end(), [path](auto place) { return isWithin(path, place); });
}

/// Somebody's home folder, which may well lie on a stick.
bool isHomeFolder(std::string_view path) {
    constexpr std::string_view homes = "/home/";
    return path.starts_with(homes) && path.find('/', homes.size()) == std::string_view::npos;
}

bool isMediaPlace(std::string_view mountPoint) { return isWithinAny(mountPoint, mediaPlaces); }

/// A subvolume of btrfs is mounted by its path within the file system and is no bind mount.
bool showsWholeVolume(const MountEntry& entry) { return entry.root == "/" || entry.type == "btrfs"; }

} // namespace

bool isNeededBySystem(std::string_view mountPoint) {
    if (isMediaPlace(mountPoint)) return false;
    return isWithinAny(mountPoint, systemPlaces) || isHomeFolder(mountPoint) ||
           std::find(systemFolders.begin(), systemFolders.end(), mountPoint) != systemFolders.end();
}

bool isBrowsable(std::string_view mountPoint, bool isRemovable) {
    const bool isHidden = mountPoint.find("/.") != std::string_view::npos;
    if (isHidden) return false;
    return isMediaPlace(mountPoint) || (isRemovable && !isNeededBySystem(mountPoint));
}

std::vector<MountedVolume>
mountedVolumes(const std::vector<MountEntry>& entries,
               const std::function<std::optional<bool>(const MountEntry&)>& isRemovable) {
    std::vector<MountedVolume> volumes;
    std::vector<const MountEntry*> listed;
    for (const auto& entry : entries) {
        if (!entry.source.starts_with("/dev/") || !showsWholeVolume(entry)) continue;
        const bool isListed = std::any_of(listed.begin(), listed.end(), [&](const MountEntry* other) {
            return other->major == entry.major && other->minor == entry.minor;
        });
        if (isListed) continue;
        const auto removable = isRemovable(entry);
        if (!removable || !isBrowsable(entry.mountPoint, *removable)) continue;
        FileURL url{entry.mountPoint};
        std::string name{url.name()};
        volumes.push_back({.url = std::move(url), .name = std::move(name), .isRemovable = *removable});
        listed.push_back(&entry);
    }
    return volumes;
}

} // namespace kelvara
