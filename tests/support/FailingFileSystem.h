#pragma once

#include "platform/linux/LinuxFileSystem.h"

#include <functional>
#include <optional>
#include <system_error>

namespace kelvara {

/// The real file system with accidents: each function that a test sets runs inside the operation of its name,
/// on the thread of the caller. Set before the operations begin.
class FailingFileSystem : public LinuxFileSystem {
public:
    /// Runs before a copy. With an error the copy fails, after it has written something.
    std::function<std::optional<std::errc>(const FileURL& from, const FileURL& to)> onCopy;
    /// Runs before a move.
    std::function<void(const FileURL& from, const FileURL& to)> onMove;
    /// The size to report instead of the real one.
    std::function<std::int64_t(const FileURL& url, std::int64_t size)> onSize;
    /// The capacity to report, instead of the real one when set; none is unknown.
    std::optional<std::optional<std::int64_t>> capacity;

    [[nodiscard]] Result<FileStatus, FileError> status(const FileURL& url) const override {
        auto status = LinuxFileSystem::status(url);
        if (status && onSize) status->size = onSize(url, status->size);
        return status;
    }
    Result<void, FileError> copyFile(const FileURL& from, const FileURL& to, std::stop_token stop) override {
        if (onCopy) {
            if (const auto failure = onCopy(from, to)) {
                (void)LinuxFileSystem::writeFileAtomically(to, "half");
                return Failure{FileError{to, std::make_error_code(*failure)}};
            }
        }
        return LinuxFileSystem::copyFile(from, to, std::move(stop));
    }
    Result<void, FileError> moveFile(const FileURL& from, const FileURL& to) override {
        if (onMove) onMove(from, to);
        return LinuxFileSystem::moveFile(from, to);
    }
    [[nodiscard]] std::optional<std::int64_t> availableCapacity(const FileURL& folder) const override {
        return capacity ? *capacity : LinuxFileSystem::availableCapacity(folder);
    }
};

} // namespace kelvara
