#include "services/ShareService.h"

#include "model/OneImagePerShot.h"
#include "services/CopyNames.h"

#include <atomic>
#include <chrono>
#include <fmt/format.h>
#include <mutex>
#include <random>
#include <system_error>
#include <thread>

namespace kelvara {

namespace {

constexpr double quality = 0.85;
constexpr std::chrono::hours lifeOfJobFolders{24};

/// A random UUID (RFC 4122, version 4).
std::string freshUUID() {
    std::random_device device;
    const auto word = [&] { return std::uint32_t{device()}; };
    const auto versioned = (word() & 0xFFFF0FFF) | 0x4000;
    const auto variant = (word() & 0x3FFFFFFF) | 0x80000000;
    return fmt::format("{:08X}-{:04X}-{:04X}-{:04X}-{:04X}{:08X}", word(), versioned >> 16,
                       versioned & 0xFFFF, variant >> 16, variant & 0xFFFF, word());
}

/// A photo on its way into a job's folder, and what became of it.
struct Job {
    PhotoExport photo;
    std::string failure{}; // empty where the file was written
};

std::string failureOf(const PhotoExport& photo, const PhotoExport::Error& error) {
    if (std::holds_alternative<PhotoExport::DecodeFailed>(error)) return message(error);
    return ImageWriter::message({std::string{photo.source.name()}, photo.settings.format});
}

std::vector<Job> jobs(std::span<const PhotoItem> photos, const std::optional<ExportLook>& look, int longEdge,
                      const FileURL& folder, const FileSystem& files, const std::stop_token& stop) {
    ExportSettings settings;
    settings.quality = quality;
    settings.longEdge = longEdge < 1 ? ShareService::usualLongEdge : longEdge;
    settings.keepsLocation = false;
    std::vector<Job> made;
    DestinationNames names{files, false, stop};
    for (const auto& photo : oneImagePerShot(photos)) {
        made.push_back({.photo = {.source = photo.url,
                                  .destination = names.unused(
                                      photo.url, ExportSettings::fileExtension(settings.format), folder),
                                  .preset = look ? look->presetFor(photo) : std::nullopt,
                                  .settings = settings}});
    }
    return made;
}

/// Makes the files of all jobs, two at a time.
void run(std::vector<Job>& jobs, FileSystem& files, const std::stop_token& stop,
         const ShareService::ProgressHandler& onProgress) {
    std::atomic<std::size_t> next = 0;
    std::mutex mutex;
    std::size_t done = 0;
    const auto makeNext = [&] {
        for (auto i = next++; i < jobs.size() && !stop.stop_requested(); i = next++) {
            auto& [photo, failure] = jobs[i];
            if (const auto written = photo.run(files, stop); !written)
                failure = failureOf(photo, written.error());
            const std::scoped_lock lock{mutex};
            ++done;
            if (onProgress) onProgress(done, jobs.size());
        }
    };
    std::jthread second;
    try {
        if (jobs.size() > 1) second = std::jthread{makeNext};
    } catch (const std::system_error&) {
        // No thread to be had: this one makes them all.
    }
    makeNext();
}

} // namespace

ShareService::ShareService(FileSystem& files, const FileURL& temporaryFolder)
    : m_files{files}, m_root{temporaryFolder.child("Kelvara-Share")} {}

Result<FileURL, FileError> ShareService::makeJobFolder() const {
    purgeOldExports();
    if (const auto root = m_files.createPrivateFolder(m_root); !root) return Failure{root.error()};
    const auto folder = m_root.child(freshUUID());
    if (const auto made = m_files.createPrivateFolder(folder); !made) return Failure{made.error()};
    return folder;
}

void ShareService::purgeOldExports() const {
    // Only a folder that nobody else can exchange for another is tidied up.
    if (!m_files.status(m_root) || !m_files.createPrivateFolder(m_root)) return;
    const auto entries = m_files.entries(m_root);
    if (!entries) return;
    const auto now = std::chrono::system_clock::now();
    for (const auto& entry : *entries) {
        const auto status = m_files.status(entry);
        const bool isOld =
            status && (!status->creationDate || now - *status->creationDate > lifeOfJobFolders);
        if (isOld) static_cast<void>(m_files.removeAll(entry)); // tried again the next time
    }
}

Result<ShareService::Made, FileError> ShareService::makeJPEGs(std::span<const PhotoItem> photos,
                                                              const std::optional<ExportLook>& look,
                                                              int longEdge, const std::stop_token& stop,
                                                              const ProgressHandler& onProgress) const {
    const auto folder = makeJobFolder();
    if (!folder) return Failure{folder.error()};
    auto all = jobs(photos, look, longEdge, *folder, m_files, stop);
    run(all, m_files, stop, onProgress);
    if (stop.stop_requested()) {
        static_cast<void>(m_files.removeAll(*folder)); // nobody waits for these files any more
        return Failure{FileError{*folder, std::make_error_code(std::errc::operation_canceled)}};
    }
    Made made;
    for (auto& job : all) {
        if (job.failure.empty()) {
            made.files.push_back(std::move(job.photo.destination));
        } else {
            made.failures.push_back(std::move(job.failure));
        }
    }
    return made;
}

} // namespace kelvara
