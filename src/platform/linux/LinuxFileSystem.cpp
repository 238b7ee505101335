#include "platform/linux/LinuxFileSystem.h"

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FileTimes.h"
#include "platform/linux/FileWriting.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <limits>
#include <sys/statvfs.h>

namespace kelvara {

Result<FileStatus, FileError> LinuxFileSystem::status(const FileURL& url) const {
    struct statx values {};
    if (::statx(AT_FDCWD, url.path().c_str(), AT_SYMLINK_NOFOLLOW, statusFields, &values) != 0) {
        return Failure{fileError(url)};
    }
    return fileStatus(values);
}

Result<std::string, FileError> LinuxFileSystem::readFile(const FileURL& url,
                                                         std::int64_t maximumBytes) const {
    const FileDescriptor file{::open(url.path().c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK)};
    if (!file.isOpen()) return Failure{fileError(url)};
    struct stat values {};
    if (::fstat(file.get(), &values) != 0) return Failure{fileError(url)};
    if (!S_ISREG(values.st_mode)) return Failure{fileError(url, S_ISDIR(values.st_mode) ? EISDIR : EINVAL)};
    if (values.st_size > maximumBytes) return Failure{fileError(url, EFBIG)};

    std::string bytes(static_cast<std::size_t>(values.st_size), '\0');
    std::size_t length = 0;
    while (length < bytes.size()) {
        const auto count = ::read(file.get(), bytes.data() + length, bytes.size() - length);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return Failure{fileError(url)};
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
    }
    bytes.resize(length);
    return bytes;
}

Result<void, FileError> LinuxFileSystem::createFolders(const FileURL& folder) {
    const auto isFolder = [&folder] {
        struct stat values {};
        return ::stat(folder.path().c_str(), &values) == 0 && S_ISDIR(values.st_mode);
    };
    if (isFolder()) return {};
    const auto parent = folder.parent();
    if (parent != folder) {
        if (auto created = createFolders(parent); !created) return created;
    }
    if (::mkdir(folder.path().c_str(), 0777) != 0) {
        const int reason = errno;
        if (reason == EEXIST && isFolder()) return {}; // made by somebody else in between
        return Failure{fileError(folder, reason)};
    }
    if (!syncFolder(parent)) return Failure{fileError(folder)};
    return {};
}

Result<void, FileError> LinuxFileSystem::createPrivateFolder(const FileURL& folder) {
    if (::mkdir(folder.path().c_str(), S_IRWXU) == 0) return {};
    if (errno != EEXIST) return Failure{fileError(folder)};
    struct stat values {};
    if (::lstat(folder.path().c_str(), &values) != 0) return Failure{fileError(folder)};
    if (!S_ISDIR(values.st_mode)) return Failure{fileError(folder, ENOTDIR)};
    const bool isPrivate = values.st_uid == ::geteuid() && (values.st_mode & (S_IRWXG | S_IRWXO)) == 0;
    if (!isPrivate) return Failure{fileError(folder, EACCES)};
    return {};
}

Result<std::vector<FileURL>, FileError> LinuxFileSystem::entries(const FileURL& folder) const {
    std::vector<FileURL> found;
    std::error_code code;
    for (std::filesystem::directory_iterator entry{folder.path(), code}, end; !code && entry != end;
         entry.increment(code)) {
        found.push_back(folder.child(entry->path().filename().native()));
    }
    if (code) return Failure{FileError{folder, code}};
    return found;
}

Result<void, FileError> LinuxFileSystem::syncNames(const FileURL& folder) {
    if (!syncFolder(folder)) return Failure{fileError(folder)};
    return {};
}

Result<void, FileError> LinuxFileSystem::removeFile(const FileURL& url) {
    if (::unlink(url.path().c_str()) != 0) return Failure{fileError(url)};
    return {};
}

Result<void, FileError> LinuxFileSystem::removeAll(const FileURL& url) {
    std::error_code code;
    std::filesystem::remove_all(url.path(), code);
    if (code) return Failure{FileError{url, code}};
    return {};
}

std::optional<std::int64_t> LinuxFileSystem::availableCapacity(const FileURL& folder) const {
    struct statvfs values {};
    if (::statvfs(folder.path().c_str(), &values) != 0) return std::nullopt;
    if (values.f_blocks == 0) return std::nullopt; // file systems that don't know their size say so
    constexpr auto maximum = std::numeric_limits<std::int64_t>::max();
    const auto unit = std::max<std::uint64_t>(values.f_frsize, 1);
    const auto blocks = std::min<std::uint64_t>(values.f_bavail, static_cast<std::uint64_t>(maximum) / unit);
    return static_cast<std::int64_t>(blocks * unit);
}

} // namespace kelvara
