#pragma once

#include "model/Result.h"
#include "platform/FileSystem.h"
#include "platform/linux/FileDescriptor.h"

#include <sys/types.h>

namespace kelvara {

/// A new file that its maker alone writes, in all processes: a lock on it says that the maker is alive. It is
/// erased with this object unless it was moved.
class LockedFile {
public:
    /// Its permissions are `mode` without what the process withholds from new files.
    /// Replaces a file there that nobody holds any more, or a link. Fails with EBUSY where somebody holds it,
    /// and with EEXIST where something else is.
    [[nodiscard]] static Result<LockedFile, FileError> create(const FileURL& url, mode_t mode);

    LockedFile(LockedFile&&) noexcept = default;
    LockedFile& operator=(LockedFile&&) = delete;
    ~LockedFile();

    [[nodiscard]] const FileDescriptor& file() const { return m_file; }
    [[nodiscard]] const FileURL& url() const { return m_url; }

    /// Gives it another name, unless that is taken; the reason stands in errno. EBUSY: another file has its
    /// name by now.
    [[nodiscard]] bool move(const FileURL& to);

private:
    LockedFile(FileURL url, FileDescriptor file) : m_url{std::move(url)}, m_file{std::move(file)} {}

    FileURL m_url;
    FileDescriptor m_file; // closed once it was moved or erased, which ends the lock
    bool m_wasMoved = false;
};

} // namespace kelvara
