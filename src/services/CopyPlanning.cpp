#include "model/OneImagePerShot.h"
#include "services/CopyNames.h"
#include "services/CopyService.h"

#include <limits>
#include <map>

namespace kelvara {

namespace {

using Plan = CopyService::Plan;

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

/// What becomes of each photo of one job, and under which name.
class Planner {
public:
    Planner(const FileSystem& files, const CopyService::PlanRequest& request, const std::stop_token& stop)
        : m_files{files}, m_request{request}, m_names{files, request.verifies, stop} {}

    Plan plan(const PhotoItem& item, const FileURL& folder) {
        auto found = m_request.exportAs ? picture(item, folder) : m_names.resolve(item, folder);
        return {item.url,
                std::move(found.url),
                item.fileSize,
                std::move(found.action),
                item.kind() == MediaKind::raw,
                sidecar(item)};
    }

private:
    DestinationNames::Found picture(const PhotoItem& item, const FileURL& folder) {
        const auto& settings = m_request.exportAs->settings;
        auto url = m_names.unused(item.url, ExportSettings::fileExtension(settings.format), folder);
        return {std::move(url), Plan::Render{preset(item), settings}};
    }

    std::shared_ptr<const DevelopPreset> preset(const PhotoItem& item) {
        const auto& [look, settings] = *m_request.exportAs;
        auto preset = look && settings.appliesLook ? look->presetFor(item) : std::nullopt;
        if (!preset) return nullptr;
        auto& shared = m_presets[preset->revision];
        if (!shared) shared = std::make_shared<const DevelopPreset>(std::move(*preset));
        return shared;
    }

    std::optional<FileURL> sidecar(const PhotoItem& item) const {
        auto url = item.url.stemKey();
        const auto status = m_files.status(url);
        const bool isThere = status && status->kind == FileStatus::Kind::file;
        return isThere ? std::optional{std::move(url)} : std::nullopt;
    }

    const FileSystem& m_files;
    const CopyService::PlanRequest& m_request;
    DestinationNames m_names;
    /// A preset is large: photos that are drawn alike share one.
    std::map<PresetRevision, std::shared_ptr<const DevelopPreset>> m_presets;
};

/// Bytes that a file may take at its destination.
std::int64_t neededBytes(const Plan& plan) {
    if (std::holds_alternative<Plan::SkipExisting>(plan.action)) return 0;
    const auto* render = std::get_if<Plan::Render>(&plan.action);
    if (render == nullptr) return plan.size;
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    const auto bytes = static_cast<double>(plan.size) * render->settings.sizeFactor();
    return bytes < static_cast<double>(most) ? static_cast<std::int64_t>(bytes) : most;
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
    TargetFolders folders{m_files, request};
    Planner planner{m_files, request, stop};
    const auto images = request.exportAs ? oneImagePerShot(request.items) : std::vector<PhotoItem>{};
    for (const auto& item : request.exportAs ? images : request.items) {
        const auto target = folders.folder(item);
        if (!target) return Failure{CopyError{target.error()}};
        plans.push_back(planner.plan(item, *target));
        if (stop.stop_requested()) return Failure{CopyError{Cancelled{}}};
    }

    std::int64_t needed = 0;
    for (const auto& plan : plans) needed = saturatingSum(needed, neededBytes(plan));
    const auto available = m_files.availableCapacity(*folder);
    if (available && *available < needed) return Failure{CopyError{NotEnoughSpace{needed, *available}}};
    return plans;
}

} // namespace kelvara
