#pragma once

#include "model/VolumeInfo.h"

#include <vector>

namespace kelvara {

inline constexpr std::size_t maximumRecentFolders = 6;

/// Whether a folder is a volume's root or its preferred source folder.
[[nodiscard]] bool isVolumeFolder(const FileURL& folder, const std::vector<VolumeInfo>& volumes);

/// `recents` with `folder` at the front and nowhere else, the oldest dropped beyond the maximum. Cards are no
/// recent folders: a volume's folder changes nothing.
[[nodiscard]] std::vector<FileURL> withRecentFolder(std::vector<FileURL> recents, const FileURL& folder,
                                                    const std::vector<VolumeInfo>& volumes);

} // namespace kelvara
