#include "services/ShareService.h"

#include "services/CopyNames.h"
#include "text/CaseFolding.h"

#include <atomic>
#include <chrono>
#include <fmt/format.h>
#include <mutex>
#include <random>
#include <system_error>
#include <thread>
#include <unordered_map>
#include <unordered_set>

namespace kelvara {

namespace {

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

Result<ShareService::Made, FileError> ShareService::makeJPEGs(std::span<const PhotoItem>,
                                                              const std::optional<ExportLook>&, int,
                                                              const std::stop_token&,
                                                              const ProgressHandler&) const {
    return Failure{FileError{m_root, std::make_error_code(std::errc::not_supported)}};
}

} // namespace kelvara
