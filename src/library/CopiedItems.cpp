#include "library/CopiedItems.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>

namespace kelvara {

std::vector<PhotoItem> copiedItems(const FileSystem& files, std::span<const PhotoItem> items,
                                   std::span<const CopyService::Plan> plans,
                                   const CopyService::Report& report) {
    std::unordered_set<FileURL> sources;
    for (const auto& plan : plans) {
        const auto status = files.status(plan.destination);
        const bool isThere = status && status->kind == FileStatus::Kind::file;
        if (isThere && status->size == plan.size) sources.insert(plan.source);
    }
    for (const auto& failure : report.failures) sources.erase(failure.source);
    std::vector<PhotoItem> copied;
    std::copy_if(items.begin(), items.end(), std::back_inserter(copied),
                 [&](const PhotoItem& item) { return sources.contains(item.url); });
    return copied;
}

} // namespace kelvara
