#include "services/CopyBatch.h"

#include "services/CopyNames.h"
#include "text/Localized.h"

#include <algorithm>
#include <fmt/format.h>
#include <unordered_map>

namespace kelvara {

namespace {

// Beyond these, waiting together saves nothing more; below, the user sees the progress move.
constexpr std::size_t maximumFiles = 128;
constexpr std::int64_t maximumUnwrittenBytes = 8'000'000;
constexpr std::chrono::milliseconds maximumAge{200};
// Fewer are synced one by one, so that nobody waits for what others write on the volume.
constexpr std::ptrdiff_t fewestForVolume = 8;
/// Takes seconds to write, as videos do.
constexpr std::int64_t longFileSize = 256'000'000;

bool isShortOfDescriptors(const CopyService::CopyError& error) {
    const auto* file = std::get_if<FileError>(&error);
    return file != nullptr && (file->code == std::errc::too_many_files_open ||
                               file->code == std::errc::too_many_files_open_in_system);
}

Failure<std::string> sidecarFailure(const FileError& error) {
    return Failure{fmt::format(fmt::runtime(localized("The rating sidecar couldn't be copied: {}.")),
                               localized(error.code.message()))};
}

} // namespace

void CopyService::Batch::add(const Plan& plan, std::optional<Rating> rating) {
    if (m_entries.empty()) m_start = std::chrono::steady_clock::now();
    auto& entry = m_entries.emplace_back(Entry{plan, rating, Skipped{}});
    if (std::holds_alternative<Plan::Copy>(plan.action)) {
        entry.outcome = Copied{plan.size};
        auto written = write(entry);
        if (!written && isShortOfDescriptors(written.error())) {
            settlePhotos(); // of which each holds one
            written = write(entry);
        }
        if (!written) entry.outcome = Failed{failureReason(written.error(), plan)};
        if (entry.photo) m_unwrittenBytes += entry.photo->unwrittenBytes();
    }
}

bool CopyService::Batch::isFull() const {
    return m_entries.size() >= maximumFiles || m_unwrittenBytes >= maximumUnwrittenBytes ||
           (!m_entries.empty() && std::chrono::steady_clock::now() - m_start >= maximumAge);
}

bool CopyService::Batch::shouldFinishBefore(const Plan& plan) const {
    return !m_entries.empty() && plan.size >= longFileSize;
}

std::vector<CopyService::Finished> CopyService::Batch::finish() {
    settlePhotos();
    // A skipped file's sidecar is carried along too: the earlier copy may have been made without one.
    for (auto& entry : m_entries) {
        if (std::holds_alternative<Failed>(entry.outcome)) continue;
        if (const auto written = writeSidecar(entry); !written) entry.outcome = Failed{written.error()};
    }
    settleSidecars();
    syncNames();

    std::vector<Finished> finished;
    finished.reserve(m_entries.size());
    for (auto& entry : m_entries) finished.push_back({entry.plan, std::move(entry.outcome)});
    m_entries.clear();
    m_unwrittenBytes = 0;
    return finished;
}

void CopyService::Batch::settlePhotos() {
    syncVolumes();
    for (auto& entry : m_entries) {
        if (!entry.photo) continue;
        if (const auto settled = settle(entry); !settled) {
            entry.outcome = Failed{failureReason(settled.error(), entry.plan)};
        }
        entry.photo.reset();
    }
}

void CopyService::Batch::settleSidecars() {
    for (auto& entry : m_entries) {
        if (!entry.sidecar) continue;
        if (const auto settled = settleSidecar(entry); !settled) entry.outcome = Failed{settled.error()};
        entry.sidecar.reset();
    }
}

Result<void, CopyService::CopyError> CopyService::Batch::write(Entry& entry) const {
    const auto& plan = entry.plan;
    const auto reading =
        std::get<Plan::Copy>(plan.action).isVerified ? CopyReading::hashed : CopyReading::none;
    // Files in progress finish when the job is cancelled, so that none is copied half for nothing.
    auto copied = m_service.m_files.copyFile(plan.source, temporaryURL(plan.destination), reading, {});
    if (!copied) return Failure{CopyError{copied.error()}};
    const auto size = (*copied)->size();
    if (!size || *size != plan.size) return Failure{CopyError{SizeMismatch{}}};
    entry.photo = std::move(*copied);
    return {};
}

void CopyService::Batch::syncVolumes() {
    const auto isWritten = [](const Entry& entry) { return entry.photo != nullptr; };
    if (std::ranges::count_if(m_entries, isWritten) < fewestForVolume) return;
    std::unordered_map<FileURL, bool> folders; // a folder is on one volume, its subfolders may be on others
    for (auto& entry : m_entries) {
        if (!entry.photo) continue;
        const auto [folder, isFirst] = folders.try_emplace(entry.plan.destination.parent(), false);
        if (isFirst) folder->second = entry.photo->syncVolume();
        entry.isSynced = folder->second;
    }
}

Result<void, CopyService::CopyError> CopyService::Batch::settle(Entry& entry) const {
    if (!entry.isSynced) {
        if (const auto synced = entry.photo->sync(); !synced) return Failure{CopyError{synced.error()}};
    }
    if (std::get<Plan::Copy>(entry.plan.action).isVerified) {
        const auto intact = entry.photo->isIntact();
        if (!intact) return Failure{CopyError{intact.error()}};
        if (!*intact) return Failure{CopyError{ContentsMismatch{}}};
    }
    const auto placed = entry.photo->place(entry.plan.destination);
    if (!placed) return Failure{CopyError{placed.error()}};
    entry.hasNewName = true;
    return {};
}

Result<void, std::string> CopyService::Batch::writeSidecar(Entry& entry) {
    const auto& plan = entry.plan;
    if (!plan.isRaw) return {};
    const auto sidecar = plan.destination.stemKey();
    if (m_service.m_files.status(sidecar)) return {}; // what is there stays
    if (!plan.sourceSidecar) {
        if (!entry.rating || *entry.rating == Rating{} || !m_service.m_writeSidecar) return {};
        return m_service.m_writeSidecar(sidecar, *entry.rating);
    }
    // Two RAW files of one shot carry the same sidecar, perhaps at the same moment: each by a temporary file
    // of its own. The sidecar may have been rewritten since the plan was made, so no size is expected of it.
    const auto copy = [&] {
        const auto temporary = temporaryURL(plan.destination.appendingExtension("xmp"));
        return m_service.m_files.copyFile(*plan.sourceSidecar, temporary, CopyReading::none, {});
    };
    auto copied = copy();
    if (!copied && isShortOfDescriptors(copied.error())) {
        settleSidecars();
        copied = copy();
    }
    if (!copied) return sidecarFailure(copied.error());
    entry.sidecar = std::move(*copied);
    return {};
}

Result<void, std::string> CopyService::Batch::settleSidecar(Entry& entry) const {
    auto settled = entry.sidecar->sync();
    if (settled) settled = entry.sidecar->place(entry.plan.destination.stemKey());
    entry.hasNewName |= settled.hasValue();
    // One that is there now is the shot's other RAW file's.
    if (!settled && settled.error().code != std::errc::file_exists) return sidecarFailure(settled.error());
    return {};
}

void CopyService::Batch::syncNames() {
    std::unordered_map<FileURL, Result<void, FileError>> folders;
    for (auto& entry : m_entries) {
        if (!entry.hasNewName || std::holds_alternative<Failed>(entry.outcome)) continue;
        const auto folder = entry.plan.destination.parent();
        auto synced = folders.find(folder);
        if (synced == folders.end()) {
            synced = folders.emplace(folder, m_service.m_files.syncNames(folder)).first;
        }
        if (!synced->second) {
            entry.outcome = Failed{failureReason(CopyError{synced->second.error()}, entry.plan)};
        }
    }
}

} // namespace kelvara
