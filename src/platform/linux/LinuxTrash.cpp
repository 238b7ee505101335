#include "platform/linux/LinuxTrash.h"

#include "platform/linux/FileWriting.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/UserFolders.h"
#include "text/PercentEncoding.h"

#include <array>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <fmt/format.h>
#include <memory>
#include <optional>
#include <sys/stat.h>

namespace kelvara {

namespace {

// Like the system calls, these give false with the reason in errno.

constexpr std::string_view recordExtension = ".trashinfo";

struct Device {
    unsigned major = 0;
    unsigned minor = 0;
    bool isMountRoot = false;
    [[nodiscard]] bool isSame(const Device& other) const {
        return major == other.major && minor == other.minor;
    }
};

/// Where a folder lies. Folders are asked, not files: a union of file systems gives its files other devices.
std::optional<Device> device(const FileURL& folder) {
    struct statx values {};
    if (::statx(AT_FDCWD, folder.path().c_str(), 0, 0, &values) != 0) return std::nullopt;
    return Device{values.stx_dev_major, values.stx_dev_minor,
                  (values.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0};
}

/// The same of a folder that need not exist yet.
std::optional<Device> futureDevice(FileURL folder) {
    for (;;) {
        const auto found = device(folder);
        if (found || errno != ENOENT || folder.path() == "/") return found;
        folder = folder.parent();
    }
}

/// The folder in which the volume of `folder` is mounted.
FileURL topFolder(FileURL folder) {
    auto here = device(folder);
    while (here && !here->isMountRoot && folder.path() != "/") {
        const auto above = device(folder.parent());
        if (!above || !above->isSame(*here)) break;
        folder = folder.parent();
        here = above;
    }
    return folder;
}

/// The path without links on its way; a link at its end stays one.
std::optional<FileURL> withoutLinks(const FileURL& url) {
    const std::unique_ptr<char, decltype(&std::free)> folder{::realpath(url.parent().path().c_str(), nullptr),
                                                             &std::free};
    if (!folder) return std::nullopt;
    return FileURL{folder.get()}.child(url.name());
}

bool makeFolder(const FileURL& folder) {
    return ::mkdir(folder.path().c_str(), 0700) == 0 || errno == EEXIST;
}

/// Whether what is put into `folder` stays in it, and with its owner: nobody's link to elsewhere, and
/// nobody's who could not read the file anyway (file systems without owners give all files the same).
bool isTrustworthy(const FileURL& folder, uid_t fileOwner) {
    struct stat values {};
    if (::lstat(folder.path().c_str(), &values) != 0) return false;
    errno = S_ISDIR(values.st_mode) ? EACCES : ENOTDIR;
    return S_ISDIR(values.st_mode) && (values.st_uid == ::getuid() || values.st_uid == fileOwner);
}

/// ".Trash" that an administrator made for all users of a volume.
bool isSharedTrash(const FileURL& folder) {
    struct stat values {};
    return ::lstat(folder.path().c_str(), &values) == 0 && S_ISDIR(values.st_mode) &&
           (values.st_mode & S_ISVTX) != 0;
}

/// "a.NEF", "a.2.NEF", ...; shortened where the record's longer name would be too long for file systems.
std::string trashName(const FileURL& file, int number) {
    constexpr std::size_t longest = 255 - recordExtension.size();
    std::string ending = number > 1 ? fmt::format(".{}", number) : "";
    if (!file.extension().empty()) ending += fmt::format(".{}", file.extension());
    if (ending.size() > longest / 2) ending.clear(); // that is no extension
    std::string name{ending.empty() ? file.name() : file.stem()};
    if (name.size() + ending.size() > longest) {
        auto end = longest - ending.size();
        while (end > 0 && (name[end] & 0xC0) == 0x80) --end; // not amid a character
        name.resize(end);
    }
    return name + ending;
}

/// What lets people put the file back. `path` is where it was.
std::string recordText(std::string_view path) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    std::array<char, 32> date{};
    (void)std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &local);
    return fmt::format("[Trash Info]\nPath={}\nDeletionDate={}\n", percentEncoded(path), date.data());
}

/// A new file with all of `text` in it, durable; EEXIST when the name is taken.
bool writeRecord(const FileURL& record, std::string_view text) {
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    const FileDescriptor file{::open(record.path().c_str(), flags, 0600)};
    if (!file.isOpen()) return false;
    if (writeAll(file, text) && syncFile(file) && syncFolder(record.parent())) return true;
    const int reason = errno;
    ::unlink(record.path().c_str());
    errno = reason;
    return false;
}

/// Puts `file` into a Trash whose folders are there. Its record comes first, and takes the name.
bool moveInto(const FileURL& trash, const FileURL& file, std::string_view recordedPath) {
    const auto text = recordText(recordedPath);
    for (int number = 1;; ++number) {
        const auto name = trashName(file, number);
        const auto record = trash.child("info").child(name + std::string{recordExtension});
        if (!writeRecord(record, text)) {
            if (errno == EEXIST) continue;
            return false;
        }
        if (moveWithoutReplacing(file, trash.child("files").child(name))) return true;
        const int reason = errno;
        ::unlink(record.path().c_str());
        errno = reason;
        if (reason != EEXIST) return false; // else a file that has lost its record
    }
}

/// The user's own; links are theirs to make.
bool moveIntoHomeTrash(const FileURL& trash, const FileURL& file) {
    return makeFolder(trash) && makeFolder(trash.child("files")) && makeFolder(trash.child("info")) &&
           moveInto(trash, file, file.path());
}

bool moveIntoVolumeTrash(const FileURL& trash, const FileURL& top, const FileURL& file, uid_t owner) {
    for (const auto& folder : {trash, trash.child("files"), trash.child("info")}) {
        if (!makeFolder(folder) || !isTrustworthy(folder, owner)) return false;
    }
    const auto prefix = top.path() == "/" ? 1 : top.path().size() + 1;
    return moveInto(trash, file, std::string_view{file.path()}.substr(prefix));
}

} // namespace

FileURL LinuxTrash::defaultHomeTrash() {
    const auto data = userDataFolder();
    return data.isEmpty() ? data : data.child("Trash");
}

Result<void, FileError> LinuxTrash::moveToTrash(const FileURL& url) {
    const auto file = withoutLinks(url.standardized());
    if (!file) return Failure{fileError(url)};
    struct stat values {};
    if (::lstat(file->path().c_str(), &values) != 0) return Failure{fileError(url)};
    const auto here = device(file->parent());
    if (!here) return Failure{fileError(url)};

    const auto home = m_homeTrash.isEmpty() ? std::nullopt : futureDevice(m_homeTrash);
    if (home && home->isSame(*here)) {
        const auto created = LinuxFileSystem{}.createFolders(m_homeTrash.parent());
        if (!created) return Failure{FileError{url, created.error().code}};
        if (moveIntoHomeTrash(m_homeTrash, *file)) return {};
        if (errno != EXDEV) return Failure{fileError(url)}; // of one device, yet mounted twice
    }

    const auto top = topFolder(file->parent());
    const auto shared = top.child(".Trash");
    const auto user = std::to_string(::getuid());
    if (isSharedTrash(shared) && moveIntoVolumeTrash(shared.child(user), top, *file, values.st_uid)) {
        return {};
    }
    if (moveIntoVolumeTrash(top.child(".Trash-" + user), top, *file, values.st_uid)) return {};
    return Failure{fileError(url)};
}

} // namespace kelvara
