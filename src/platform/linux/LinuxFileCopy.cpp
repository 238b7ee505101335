#include "platform/linux/FileWriting.h"
#include "platform/linux/LinuxFileSystem.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <memory>
#include <sys/ioctl.h>
#include <sys/stat.h>

namespace kelvara {

namespace {

/// Small enough that a buffer stays in the processor's cache.
constexpr std::size_t bufferSize = 256 * 1024;
/// What the kernel copies between two looks at the stop token.
constexpr std::size_t kernelCopySize = 4 * 1024 * 1024;

/// One file's way to another place.
class FileCopy {
public:
    FileCopy(const FileURL& from, const FileURL& to, std::stop_token stop)
        : m_from{from}, m_to{to}, m_stop{std::move(stop)} {}

    Result<void, FileError> run() {
        if (auto opened = open(); !opened) return opened;
        if (auto copied = copyBytes(); !copied) return copied;
        keepAttributes();
        if (!syncFile(m_target)) return Failure{fileError(m_to)};
        return {};
    }

private:
    Result<void, FileError> open() {
        // O_NONBLOCK: opening a pipe that bears a photo's name must not wait for a writer.
        constexpr int readFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
        m_source = FileDescriptor{::open(m_from.path().c_str(), readFlags)};
        if (!m_source.isOpen() || ::fstat(m_source.get(), &m_values) != 0) return Failure{fileError(m_from)};
        if (!S_ISREG(m_values.st_mode)) {
            return Failure{fileError(m_from, S_ISDIR(m_values.st_mode) ? EISDIR : EINVAL)};
        }
        // Unreadable to others until it has the source's permissions.
        constexpr int writeFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
        m_target = FileDescriptor{::open(m_to.path().c_str(), writeFlags, 0600)};
        if (!m_target.isOpen()) return Failure{fileError(m_to)};
        return {};
    }

    /// Tries the cheapest way first. What one way leaves, for whatever reason, the next continues, and the
    /// last one's reason is the one that counts.
    Result<void, FileError> copyBytes() {
        if (m_stop.stop_requested()) return cancelled();
        if (::ioctl(m_target.get(), FICLONE, m_source.get()) == 0) return {};
        (void)::posix_fadvise(m_source.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
        for (;;) {
            const auto count = uninterrupted([&] {
                return ::copy_file_range(m_source.get(), nullptr, m_target.get(), nullptr, kernelCopySize, 0);
            });
            if (m_stop.stop_requested()) return cancelled();
            if (count <= 0) break; // some file systems say 0 before the end, so the end is left to read()
        }
        return readAndWrite();
    }

    Result<void, FileError> readAndWrite() {
        const std::unique_ptr<char[]> buffer{new char[bufferSize]};
        for (;;) {
            const auto count =
                uninterrupted([&] { return ::read(m_source.get(), buffer.get(), bufferSize); });
            if (count < 0) return Failure{fileError(m_from)};
            if (count == 0) return {};
            if (!writeAll(m_target, {buffer.get(), static_cast<std::size_t>(count)})) {
                return Failure{fileError(m_to)};
            }
            if (m_stop.stop_requested()) return cancelled();
        }
    }

    /// As far as the target's file system takes them: a card's does not know owners, modes or attributes.
    void keepAttributes() {
        copyUserAttributes(m_source, m_target); // before a mode that may forbid it
        (void)::fchmod(m_target.get(), m_values.st_mode & 0777);
        const struct timespec times[2] = {m_values.st_atim, m_values.st_mtim};
        (void)::futimens(m_target.get(), times);
    }

    [[nodiscard]] Failure<FileError> cancelled() const { return Failure{fileError(m_from, ECANCELED)}; }

    const FileURL& m_from;
    const FileURL& m_to;
    std::stop_token m_stop;
    FileDescriptor m_source{-1};
    FileDescriptor m_target{-1};
    struct stat m_values {};
};

} // namespace

Result<void, FileError> LinuxFileSystem::copyFile(const FileURL& from, const FileURL& to,
                                                  std::stop_token stop) {
    return FileCopy{from, to, std::move(stop)}.run();
}

} // namespace kelvara
