#include "services/CopyNames.h"
#include "services/CopyService.h"

namespace kelvara {

namespace {

/// The folders that the files of one job go into, each created when it is first needed.
class TargetFolders {
public:
    TargetFolders(FileSystem& files, const CopyService::PlanRequest& request)
        : m_files{files}, m_request{request} {}

    Result<FileURL, FileError> folder(const PhotoItem& item) {
        if (!m_request.intoDateFolders) return m_request.destination;
        auto name = dateFolderName(item.creationDate);
        auto url = m_request.destination.child(name);
        if (m_request.createsFolders && m_created.insert(std::move(name)).second) {
            if (const auto created = m_files.createFolders(url); !created) return Failure{created.error()};
        }
        return url;
    }

private:
    FileSystem& m_files;
    const CopyService::PlanRequest& m_request;
    std::unordered_set<std::string> m_created;
};

Result<FileURL, FileError> createdFolder(FileSystem& files, const FileURL& folder) {
    if (const auto created = files.createFolders(folder); !created) return Failure{created.error()};
    return folder;
}

/// The folder, or the closest one above it that exists: the one that it would be created in.
Result<FileURL, FileError> existingFolder(const FileSystem& files, const FileURL& folder) {
    auto existing = folder;
    for (;;) {
        const auto status = files.status(existing);
        if (status && status->kind == FileStatus::Kind::file) {
            return Failure{FileError{existing, std::make_error_code(std::errc::not_a_directory)}};
        }
        if (status || existing.parent() == existing) return existing;
        existing = existing.parent();
    }
}

} // namespace

Result<std::vector<CopyService::Plan>, CopyService::CopyError>
CopyService::plan(const PlanRequest& request, const std::stop_token& stop) const {
    if (request.source && request.destination.isContained(*request.source)) {
        return Failure{CopyError{DestinationInsideSource{}}};
    }
    const auto folder = request.createsFolders ? createdFolder(m_files, request.destination)
                                               : existingFolder(m_files, request.destination);
    if (!folder) return Failure{CopyError{folder.error()}};

    std::vector<Plan> plans;
    plans.reserve(request.items.size());
    TargetFolders folders{m_files, request};
    DestinationNames names{m_files, request.verifies, stop};
    for (const auto& item : request.items) {
        const auto target = folders.folder(item);
        if (!target) return Failure{CopyError{target.error()}};

        auto found = names.resolve(item, *target);
        if (stop.stop_requested()) return Failure{CopyError{Cancelled{}}};
        auto& plan = plans.emplace_back(Plan{
            item.url, std::move(found.url), item.fileSize, found.action, item.kind() == MediaKind::raw, {}});
        auto sidecar = item.url.stemKey();
        const auto status = m_files.status(sidecar);
        if (status && status->kind == FileStatus::Kind::file) plan.sourceSidecar = std::move(sidecar);
    }

    std::int64_t needed = 0;
    for (const auto& plan : plans) {
        if (std::holds_alternative<Plan::Copy>(plan.action)) needed = saturatingSum(needed, plan.size);
    }
    const auto available = m_files.availableCapacity(*folder);
    if (available && *available < needed) return Failure{CopyError{NotEnoughSpace{needed, *available}}};
    return plans;
}

} // namespace kelvara
