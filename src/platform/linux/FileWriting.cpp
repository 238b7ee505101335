#include "platform/linux/FileWriting.h"

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace kelvara {

bool writeAll(const FileDescriptor& file, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count = uninterrupted([&] { return ::write(file.get(), bytes.data(), bytes.size()); });
        if (count < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool syncFile(const FileDescriptor& file) {
    // EINVAL: a file system that has nothing to wait for.
    return uninterrupted([&] { return ::fsync(file.get()); }) == 0 || errno == EINVAL;
}

bool syncFolder(const FileURL& folder) {
    const FileDescriptor opened{::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
    // A folder that may be written but not listed can't be opened; its names are as safe as they get.
    if (!opened.isOpen()) return errno == EACCES;
    if (uninterrupted([&] { return ::fsync(opened.get()); }) == 0) return true;
    return errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP || errno == EBADF;
}

void copyUserAttributes(const FileDescriptor& from, const FileDescriptor& to) {
    const auto listSize = ::flistxattr(from.get(), nullptr, 0);
    if (listSize <= 0) return;
    std::string names(static_cast<std::size_t>(listSize), '\0');
    const auto listed = ::flistxattr(from.get(), names.data(), names.size());
    if (listed <= 0) return;
    names.resize(static_cast<std::size_t>(listed));

    std::string value;
    for (std::size_t at = 0; at < names.size();) {
        const std::string name{names.c_str() + at};
        at += name.size() + 1;
        if (!name.starts_with("user.")) continue;
        const auto size = ::fgetxattr(from.get(), name.c_str(), nullptr, 0);
        if (size < 0) continue;
        value.resize(static_cast<std::size_t>(size));
        const auto length = ::fgetxattr(from.get(), name.c_str(), value.data(), value.size());
        if (length < 0) continue;
        // A photo without its tags is better than no photo, so a refusal is no failure.
        (void)::fsetxattr(to.get(), name.c_str(), value.data(), static_cast<std::size_t>(length), 0);
    }
}

bool moveByExclusiveRename(const FileURL& from, const FileURL& to) {
    return ::renameat2(AT_FDCWD, from.path().c_str(), AT_FDCWD, to.path().c_str(), RENAME_NOREPLACE) == 0;
}

bool moveByLink(const FileURL& from, const FileURL& to) {
    if (::link(from.path().c_str(), to.path().c_str()) != 0) return false;
    if (::unlink(from.path().c_str()) == 0) return true;
    const int reason = errno;
    ::unlink(to.path().c_str());
    errno = reason;
    return false;
}

bool moveByCheckedRename(const FileURL& from, const FileURL& to) {
    struct stat values {};
    if (::lstat(to.path().c_str(), &values) == 0) {
        errno = EEXIST;
        return false;
    }
    return errno == ENOENT && ::rename(from.path().c_str(), to.path().c_str()) == 0;
}

bool moveWithoutReplacing(const FileURL& from, const FileURL& to) {
    const auto isRefused = [] { // by the file system, whatever the names
        return errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP || errno == EPERM || errno == EMLINK;
    };
    bool moved = moveByExclusiveRename(from, to);
    if (!moved && isRefused()) moved = moveByLink(from, to);
    if (!moved && isRefused()) moved = moveByCheckedRename(from, to);
    return moved;
}

} // namespace kelvara
