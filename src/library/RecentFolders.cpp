#include "library/RecentFolders.h"

#include <algorithm>

namespace kelvara {

bool isVolumeFolder(const FileURL& folder, const std::vector<VolumeInfo>& volumes) {
    const auto standardized = folder.standardized();
    return std::any_of(volumes.begin(), volumes.end(), [&](const VolumeInfo& volume) {
        return standardized == volume.url.standardized() ||
               standardized == volume.preferredSourceURL.standardized();
    });
}

std::vector<FileURL> withRecentFolder(std::vector<FileURL> recents, const FileURL& folder,
                                      const std::vector<VolumeInfo>& volumes) {
    if (isVolumeFolder(folder, volumes)) return recents;
    const auto standardized = folder.standardized();
    std::erase(recents, standardized);
    recents.insert(recents.begin(), standardized);
    if (recents.size() > maximumRecentFolders) recents.resize(maximumRecentFolders);
    return recents;
}

} // namespace kelvara
