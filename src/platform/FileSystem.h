#pragma once

#include "model/PhotoItem.h"
#include "model/Result.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace kelvara {

struct FileStatus {
    enum class Kind { file, folder, other };
    Kind kind = Kind::other;
    std::int64_t size = 0; ///< Bytes.
    std::optional<FileTime>
        creationDate; ///< The earlier of birth and modification; see docs/architecture.md.
};

/// What the file system refused, and for which file.
struct FileError {
    FileURL url;
    std::error_code code;

    [[nodiscard]] bool wasCancelled() const { return code == std::errc::operation_canceled; }
    friend bool operator==(const FileError&, const FileError&) = default;
};

/// One sentence for people: "“DSC_1.NEF” couldn't be opened: Permission denied."
[[nodiscard]] std::string message(const FileError& error);

/// Sees a folder tree entry by entry; see `FileSystem::walk`.
class FolderWalkVisitor {
public:
    enum class Answer { pass, describe, stop };

    virtual ~FolderWalkVisitor() = default;
    /// Every entry, folders included, before anything but its name is known. `stop` ends the walk.
    virtual Answer met(std::string_view name) = 0;
    /// Follows a `describe` whose status could be read. `folder` is the path without a trailing slash.
    virtual void described(std::string_view folder, std::string_view name, const FileStatus& status) = 0;
};

/// A copy or a new file that is written, but not yet under its name. Its temporary file is nobody else's, and
/// is erased with this object unless it was placed. Errors name the temporary file.
class PendingCopy {
public:
    virtual ~PendingCopy() = default;

    /// Bytes in the copy now.
    [[nodiscard]] virtual Result<std::int64_t, FileError> size() const = 0;

    /// Those of them that `sync` still has to write.
    [[nodiscard]] virtual std::int64_t unwrittenBytes() const = 0;

    /// Waits until the bytes and attributes are on the medium.
    virtual Result<void, FileError> sync() = 0;

    /// The same for everything that was written on this copy's volume since the copy began, which costs
    /// hardly more than one `sync`. False where the volume can't promise that, or something could not be
    /// written: then each copy has to be synced.
    [[nodiscard]] virtual bool syncVolume() = 0;

    /// Reads the copy back from the medium, after `sync`, and tells whether it is what was read of the
    /// original. For copies made with `CopyReading::hashed` only.
    [[nodiscard]] virtual Result<bool, FileError> isIntact() const = 0;

    /// Gives the copy its name, in the folder that it is in; fails with `file_exists` rather than replace
    /// anything. The name is on the medium once `FileSystem::syncNames` has returned.
    virtual Result<void, FileError> place(const FileURL& destination) = 0;
};

/// Keeps others out for as long as it lives; see `FileSystem::lock`.
class FileLock {
public:
    virtual ~FileLock() = default;
};

enum class CopyReading {
    none,   ///< The file system may copy without anybody seeing the bytes.
    hashed, ///< Every byte is read once and hashed, so that the copy can be compared later.
};

/// Files and folders. Every call blocks, so none of them belongs on the main thread; all may be called from
/// several threads at once. Links are never followed, except the ones on the way to a folder, and a link
/// that `readFile` or `writeFileAtomically` is given stands for the file it leads to and stays a link.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    [[nodiscard]] virtual Result<FileStatus, FileError> status(const FileURL& url) const = 0;

    /// Visits everything below `folder`, at any depth. Hidden entries and the insides of packages (folders
    /// shown as one file) are left out. What can't be read inside is passed over; fails only where `folder`
    /// itself can't be read.
    virtual Result<void, FileError> walk(const FileURL& folder, FolderWalkVisitor& visitor) const = 0;

    /// Reads a whole file; one over `maximumBytes` fails with `file_too_large` before it is read.
    [[nodiscard]] virtual Result<std::string, FileError> readFile(const FileURL& url,
                                                                  std::int64_t maximumBytes) const = 0;

    /// Puts `bytes` in the place of `url`, new or existing, so that a crash or a power cut at any moment
    /// leaves the old or the new file, whole. Keeps an existing file's mode, and its owner where allowed.
    virtual Result<void, FileError> writeFileAtomically(const FileURL& url, std::string_view bytes) = 0;

    /// Waits until nobody else holds the lock of `url`, in any process, for those who read a file and write
    /// it anew without losing what others write in between; it keeps out none but those who ask for it. A
    /// hidden file beside it stays behind. Fails with `device_or_resource_busy` after some seconds. File
    /// systems without locks give it to everybody.
    [[nodiscard]] virtual Result<std::unique_ptr<FileLock>, FileError> lock(const FileURL& url) = 0;

    /// Creates `folder` and what is missing above it; an existing folder is no error.
    virtual Result<void, FileError> createFolders(const FileURL& folder) = 0;

    /// Creates `folder`, in an existing one, so that nobody but this user may enter it. What is there already
    /// has to be like that: fails with `not_a_directory` for a link or a file, and with `permission_denied`
    /// where it is somebody else's or others may enter.
    virtual Result<void, FileError> createPrivateFolder(const FileURL& folder) = 0;

    /// What lies in `folder` itself, in no order, hidden entries too.
    [[nodiscard]] virtual Result<std::vector<FileURL>, FileError> entries(const FileURL& folder) const = 0;

    /// Copies a file's bytes, modification time, permissions and extended attributes to the file `temporary`.
    /// Attributes that its volume can't hold are left out. What a copy that was cut off left there is
    /// replaced, and so is a link; where another copy is being written there, by any process, it fails with
    /// `device_or_resource_busy`, and where something else is, with `file_exists`. Fails with
    /// `operation_canceled` soon after `stop` is requested. A failure leaves nothing behind and names the
    /// file that it came from: `from` could not be read, or `temporary` not be written.
    virtual Result<std::unique_ptr<PendingCopy>, FileError>
    copyFile(const FileURL& from, const FileURL& temporary, CopyReading reading, std::stop_token stop) = 0;

    /// Writes `bytes` to the new file `temporary`, which gets the usual permissions. What is there already is
    /// treated as by `copyFile`; a failure leaves nothing behind and names `temporary`.
    virtual Result<std::unique_ptr<PendingCopy>, FileError> createFile(const FileURL& temporary,
                                                                       std::string_view bytes) = 0;

    /// Whether two files hold the same bytes; `onMedium` is read past the cache. Fails with
    /// `operation_canceled` soon after `stop` is requested.
    [[nodiscard]] virtual Result<bool, FileError>
    haveSameContents(const FileURL& file, const FileURL& onMedium, std::stop_token stop) const = 0;

    /// Waits until the names in `folder` are on the medium, as far as its file system knows how.
    virtual Result<void, FileError> syncNames(const FileURL& folder) = 0;

    /// Renames within one volume, durably; fails with `file_exists` rather than replace anything.
    virtual Result<void, FileError> moveFile(const FileURL& from, const FileURL& to) = 0;

    /// Erases one file.
    virtual Result<void, FileError> removeFile(const FileURL& url) = 0;

    /// Erases a file, a link, or a folder with all that is in it; nothing that a link in it leads to.
    virtual Result<void, FileError> removeAll(const FileURL& url) = 0;

    /// Bytes that this user may still write on the volume of `folder`; empty when unknown.
    [[nodiscard]] virtual std::optional<std::int64_t> availableCapacity(const FileURL& folder) const = 0;
};

} // namespace kelvara
