#include "platform/linux/LockedFile.h"

#include "platform/linux/FileWriting.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace kelvara {

namespace {

/// Fails with EWOULDBLOCK where somebody else holds the lock. File systems without locks give it to
/// everybody.
bool lock(const FileDescriptor& file) {
    return uninterrupted([&] { return ::flock(file.get(), LOCK_EX | LOCK_NB); }) == 0 || errno != EWOULDBLOCK;
}

/// Whether `url` still names the open file.
bool isNamed(const FileDescriptor& file, const FileURL& url) {
    struct stat opened {};
    struct stat named {};
    return ::fstat(file.get(), &opened) == 0 && ::lstat(url.path().c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

/// Erases a file whose maker is gone, or a link, never what that leads to. Gives the reason, as in errno, why
/// the name is not free now; 0 when it is.
int eraseAbandoned(const FileURL& url) {
    constexpr int flags = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    FileDescriptor file{::open(url.path().c_str(), O_RDWR | flags)}; // locks on network drives ask for that
    if (!file.isOpen()) file = FileDescriptor{::open(url.path().c_str(), O_RDONLY | flags)};
    if (!file.isOpen()) {
        if (errno == ENOENT || (errno == ELOOP && ::unlink(url.path().c_str()) == 0)) return 0;
        return errno;
    }
    struct stat values {};
    if (::fstat(file.get(), &values) != 0) return errno;
    if (!S_ISREG(values.st_mode)) return EEXIST;
    if (!lock(file)) return EBUSY;
    // Whoever locked it before may have moved it in between, and somebody else have made another.
    if (!isNamed(file, url)) return 0;
    return ::unlink(url.path().c_str()) == 0 ? 0 : errno;
}

} // namespace

Result<LockedFile, FileError> LockedFile::create(const FileURL& url, mode_t mode) {
    constexpr int attempts = 100; // each but the first is lost to somebody else who does the same
    for (int i = 0; i < attempts; ++i) {
        constexpr int flags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
        FileDescriptor file{::open(url.path().c_str(), flags, mode)};
        if (!file.isOpen() && errno != EEXIST) return Failure{fileError(url)};
        if (!file.isOpen()) {
            if (const int reason = eraseAbandoned(url); reason != 0) return Failure{fileError(url, reason)};
        } else if (lock(file) && isNamed(file, url)) {
            return LockedFile{url, std::move(file)};
        } // else somebody took it for abandoned before it was locked
    }
    return Failure{fileError(url, EBUSY)};
}

LockedFile::~LockedFile() {
    if (m_file.isOpen() && !m_wasMoved && isNamed(m_file, m_url)) ::unlink(m_url.path().c_str());
}

bool LockedFile::move(const FileURL& to) {
    // On file systems without locks somebody may have taken it for abandoned, and writes another one now.
    errno = 0;
    if (!isNamed(m_file, m_url)) {
        if (errno == 0) errno = EBUSY;
        return false;
    }
    m_wasMoved = moveWithoutReplacing(m_url, to);
    return m_wasMoved;
}

} // namespace kelvara
