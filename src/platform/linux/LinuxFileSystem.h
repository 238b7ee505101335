#pragma once

#include "platform/FileSystem.h"

namespace kelvara {

/// Files through the Linux system calls: statx for birth times, getdents64 for fast walks, renameat2 so that
/// nothing is ever replaced by accident.
class LinuxFileSystem : public FileSystem {
public:
    [[nodiscard]] Result<FileStatus, FileError> status(const FileURL& url) const override;
    Result<void, FileError> walk(const FileURL& folder, FolderWalkVisitor& visitor) const override;
    [[nodiscard]] Result<std::string, FileError> readFile(const FileURL& url,
                                                          std::int64_t maximumBytes) const override;
    Result<void, FileError> writeFileAtomically(const FileURL& url, std::string_view bytes) override;
    [[nodiscard]] Result<std::unique_ptr<FileLock>, FileError> lock(const FileURL& url) override;
    Result<void, FileError> createFolders(const FileURL& folder) override;
    Result<void, FileError> createPrivateFolder(const FileURL& folder) override;
    [[nodiscard]] Result<std::vector<FileURL>, FileError> entries(const FileURL& folder) const override;
    Result<std::unique_ptr<PendingCopy>, FileError> copyFile(const FileURL& from, const FileURL& temporary,
                                                             CopyReading reading,
                                                             std::stop_token stop) override;
    Result<std::unique_ptr<PendingCopy>, FileError> createFile(const FileURL& temporary,
                                                               std::string_view bytes) override;
    [[nodiscard]] Result<bool, FileError> haveSameContents(const FileURL& file, const FileURL& onMedium,
                                                           std::stop_token stop) const override;
    Result<void, FileError> syncNames(const FileURL& folder) override;
    Result<void, FileError> moveFile(const FileURL& from, const FileURL& to) override;
    Result<void, FileError> removeFile(const FileURL& url) override;
    Result<void, FileError> removeAll(const FileURL& url) override;
    [[nodiscard]] std::optional<std::int64_t> availableCapacity(const FileURL& folder) const override;
};

} // namespace kelvara
