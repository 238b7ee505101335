#include "library/FileRemoval.h"

#include <algorithm>
#include <unordered_set>

namespace kelvara {

std::vector<FileURL> orphanedSidecars(std::span<const FileURL> targets, std::span<const PhotoItem> items) {
    const std::unordered_set<FileURL> going{targets.begin(), targets.end()};
    std::unordered_set<FileURL> sidecars;
    for (const auto& target : targets) sidecars.insert(target.stemKey());
    for (const auto& item : items) {
        if (!going.contains(item.url)) sidecars.erase(item.url.stemKey());
    }
    return {sidecars.begin(), sidecars.end()};
}

FileRemoval removeFiles(FileSystem& files, Trash& trash, std::span<const FileURL> targets,
                        std::span<const FileURL> sidecars, bool permanently, const std::stop_token& stop) {
    FileRemoval result;
    std::unordered_set<FileURL> needed; // by files that are still there
    const auto remove = [&](const FileURL& url) {
        return permanently ? files.removeFile(url) : trash.moveToTrash(url);
    };
    for (const auto& target : targets) {
        const bool isStopped = stop.stop_requested();
        const auto removed = isStopped ? Result<void, FileError>{} : remove(target);
        if (!isStopped && removed) {
            result.removed.push_back(target);
            continue;
        }
        if (!removed) result.failures.push_back(removed.error());
        needed.insert(target.stemKey());
    }
    for (const auto& sidecar : sidecars) {
        if (!needed.contains(sidecar) && remove(sidecar)) result.removedSidecars.push_back(sidecar);
    }
    return result;
}

} // namespace kelvara
