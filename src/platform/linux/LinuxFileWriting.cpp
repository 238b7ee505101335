#include "platform/linux/FileWriting.h"
#include "platform/linux/LinuxFileSystem.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <random>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>

namespace kelvara {

namespace {

/// The file that `url` stands for: itself, or where its links lead, whether or not a file is there yet.
Result<FileURL, FileError> linkTarget(const FileURL& url) {
    constexpr int maximumLinks = 40; // as many as the kernel follows
    FileURL target = url;
    std::array<char, 4096> text{};
    for (int i = 0; i < maximumLinks; ++i) {
        const auto length = ::readlink(target.path().c_str(), text.data(), text.size());
        if (length < 0) {
            if (errno == EINVAL || errno == ENOENT) return target; // no link, or nothing at all
            return Failure{fileError(url)};
        }
        const std::string_view pointed{text.data(), static_cast<std::size_t>(length)};
        target = pointed.starts_with('/') ? FileURL{std::string{pointed}} : target.parent().child(pointed);
    }
    return Failure{fileError(url, ELOOP)};
}

/// A new file beside the one it is going to replace; removed unless it does.
class ReplacementFile {
public:
    explicit ReplacementFile(const FileURL& target, mode_t mode) {
        std::random_device random;
        do {
            const auto number = std::uint64_t{random()} << 32U | random();
            std::array<char, 40> name{};
            std::snprintf(name.data(), name.size(), ".kelvara-%016llx",
                          static_cast<unsigned long long>(number));
            m_url = target.parent().child(name.data());
            constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
            m_file = FileDescriptor{::open(m_url.path().c_str(), flags, mode)};
        } while (!m_file.isOpen() && errno == EEXIST);
        m_removes = m_file.isOpen();
    }
    ~ReplacementFile() {
        if (m_removes) ::unlink(m_url.path().c_str());
    }
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    [[nodiscard]] const FileDescriptor& file() const { return m_file; }

    [[nodiscard]] bool replace(const FileURL& target) {
        if (::rename(m_url.path().c_str(), target.path().c_str()) != 0) return false;
        m_removes = false;
        return true;
    }

private:
    FileURL m_url;
    FileDescriptor m_file{-1};
    bool m_removes = false;
};

/// Makes a replacement look like the file it replaces. File systems without owners or modes refuse, which
/// takes nothing away: their files all look the same.
void keepAttributes(const FileDescriptor& existing, const struct stat& values, const FileDescriptor& file) {
    copyUserAttributes(existing, file);
    // The owner first: a change of owner clears bits of the mode.
    if (::fchown(file.get(), values.st_uid, values.st_gid) != 0) {
        (void)!::fchown(file.get(), static_cast<uid_t>(-1), values.st_gid);
    }
    (void)::fchmod(file.get(), values.st_mode & 07777);
}

class HeldLock : public FileLock {
public:
    explicit HeldLock(FileDescriptor file) : m_file{std::move(file)} {}

private:
    FileDescriptor m_file; // closing it ends the lock
};

} // namespace

Result<std::unique_ptr<FileLock>, FileError> LinuxFileSystem::lock(const FileURL& url) {
    const auto target = linkTarget(url);
    if (!target) return Failure{target.error()};
    const auto path = target->parent().child('.' + std::string{target->name()} + ".lock").path();
    constexpr int flags = O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    FileDescriptor file{::open(path.c_str(), O_RDWR | flags, 0666)}; // locks on network drives ask for that
    if (!file.isOpen() && errno == EACCES)
        file = FileDescriptor{::open(path.c_str(), O_RDONLY | flags, 0666)};
    if (!file.isOpen()) return Failure{fileError(url)};

    // Not for ever, as whoever holds it may be stopped.
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds{10};
    while (uninterrupted([&] { return ::flock(file.get(), LOCK_EX | LOCK_NB); }) != 0 &&
           errno == EWOULDBLOCK) {
        if (Clock::now() >= end) return Failure{fileError(url, EBUSY)};
        std::this_thread::sleep_for(std::chrono::milliseconds{2});
    }
    return std::unique_ptr<FileLock>{new HeldLock{std::move(file)}};
}

Result<void, FileError> LinuxFileSystem::writeFileAtomically(const FileURL& url, std::string_view bytes) {
    const auto target = linkTarget(url);
    if (!target) return Failure{target.error()};

    struct stat values {};
    const bool exists = ::lstat(target->path().c_str(), &values) == 0;
    if (!exists && errno != ENOENT) return Failure{fileError(url)};
    if (exists && !S_ISREG(values.st_mode)) {
        return Failure{fileError(url, S_ISDIR(values.st_mode) ? EISDIR : EINVAL)};
    }

    // Nobody may open a replacement before it has its final mode; a new file gets the usual one at once.
    ReplacementFile replacement{*target, exists ? 0600U : 0666U};
    if (!replacement.file().isOpen()) return Failure{fileError(url)};
    if (!writeAll(replacement.file(), bytes)) return Failure{fileError(url)};
    if (exists) {
        const FileDescriptor existing{
            ::open(target->path().c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC)};
        keepAttributes(existing, values, replacement.file());
    }
    if (!syncFile(replacement.file()) || !replacement.replace(*target)) return Failure{fileError(url)};
    if (!syncFolder(target->parent())) return Failure{fileError(url)};
    return {};
}

Result<void, FileError> LinuxFileSystem::moveFile(const FileURL& from, const FileURL& to) {
    if (!moveWithoutReplacing(from, to)) return Failure{fileError(errno == ENOENT ? from : to)};
    if (!syncFolder(to.parent())) return Failure{fileError(to)};
    return {};
}

} // namespace kelvara
