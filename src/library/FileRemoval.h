#pragma once

#include "model/PhotoItem.h"
#include "platform/FileSystem.h"
#include "platform/Trash.h"

#include <span>
#include <stop_token>
#include <vector>

namespace kelvara {

/// What became of files that were to go.
struct FileRemoval {
    std::vector<FileURL> removed;
    std::vector<FileError> failures;
    std::vector<FileURL> removedSidecars;
};

/// The sidecars of shots that lose their last file: those of `targets` that no other of the source's `items`
/// shares. Whether they exist is not looked at.
[[nodiscard]] std::vector<FileURL> orphanedSidecars(std::span<const FileURL> targets,
                                                    std::span<const PhotoItem> items);

/// Erases the files, or moves them to the Trash, one after the other; a failure keeps none of the others.
/// Then the sidecars follow, as far as they exist and all their files went. Their failures are passed over.
/// Once `stop` is requested no further file is begun. Blocks.
FileRemoval removeFiles(FileSystem& files, Trash& trash, std::span<const FileURL> targets,
                        std::span<const FileURL> sidecars, bool permanently, const std::stop_token& stop);

} // namespace kelvara
