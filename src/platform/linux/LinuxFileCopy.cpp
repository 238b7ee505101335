#include "platform/linux/ByteCopy.h"
#include "platform/linux/FileWriting.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LockedFile.h"
#include "platform/linux/SequentialReader.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace kelvara {

namespace {

/// An original, open for reading.
struct Source {
    FileDescriptor file{-1};
    struct stat values {};
};

Result<Source, FileError> openSource(const FileURL& url) {
    // O_NONBLOCK: opening a pipe that bears a photo's name must not wait for a writer.
    constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    Source source{FileDescriptor{::open(url.path().c_str(), flags)}, {}};
    if (!source.file.isOpen() || ::fstat(source.file.get(), &source.values) != 0)
        return Failure{fileError(url)};
    if (S_ISREG(source.values.st_mode)) return source;
    return Failure{fileError(url, S_ISDIR(source.values.st_mode) ? EISDIR : EINVAL)};
}

/// As far as the target's file system takes them: a card's does not know owners, modes or attributes.
void keepAttributes(const Source& source, const FileDescriptor& target) {
    copyUserAttributes(source.file, target); // before a mode that may forbid it
    (void)::fchmod(target.get(), source.values.st_mode & 0777);
    const struct timespec times[2] = {source.values.st_atim, source.values.st_mtim};
    (void)::futimens(target.get(), times);
}

/// Whether syncing the file's volume ends with flushing the device's own cache. FAT's does not, and file
/// systems in user space aren't asked to.
bool flushesAsAWhole(const FileDescriptor& file) {
    struct statfs values {};
    if (::fstatfs(file.get(), &values) != 0) return false;
    return values.f_type == EXT4_SUPER_MAGIC || values.f_type == XFS_SUPER_MAGIC ||
           values.f_type == BTRFS_SUPER_MAGIC;
}

class LinuxFileCopy : public PendingCopy {
public:
    LinuxFileCopy(LockedFile file, const CopiedBytes& copied) : m_file{std::move(file)}, m_copied{copied} {}

    [[nodiscard]] Result<std::int64_t, FileError> size() const override {
        struct stat values {};
        if (::fstat(m_file.file().get(), &values) != 0) return failure();
        return std::int64_t{values.st_size};
    }
    [[nodiscard]] std::int64_t unwrittenBytes() const override { return m_copied.unwritten; }
    Result<void, FileError> sync() override {
        if (!syncFile(m_file.file())) return failure();
        return {};
    }
    [[nodiscard]] bool syncVolume() override {
        // The copy's own descriptor is told of every error since it was opened, also of those that another
        // thread has seen already.
        return flushesAsAWhole(m_file.file()) && ::syncfs(m_file.file().get()) == 0;
    }
    [[nodiscard]] Result<bool, FileError> isIntact() const override {
        SequentialReader reader{m_file.file(), 0, SequentialReader::Way::onMedium};
        const AlignedBuffer buffer{directTransferSize};
        ContentHasher hasher;
        for (;;) {
            const auto bytes = reader.next(buffer);
            if (!bytes) return failure();
            if (bytes->empty()) return hasher.hash() == m_copied.hash;
            hasher.add(*bytes);
        }
    }
    Result<void, FileError> place(const FileURL& destination) override {
        if (!m_file.move(destination)) return failure();
        return {};
    }

private:
    [[nodiscard]] Failure<FileError> failure() const { return Failure{fileError(m_file.url())}; }

    LockedFile m_file;
    CopiedBytes m_copied;
};

} // namespace

Result<std::unique_ptr<PendingCopy>, FileError> LinuxFileSystem::copyFile(const FileURL& from,
                                                                          const FileURL& temporary,
                                                                          CopyReading reading,
                                                                          std::stop_token stop) {
    const auto source = openSource(from);
    if (!source) return Failure{source.error()};
    // Unreadable to others until it has its final permissions.
    auto target = LockedFile::create(temporary, 0600);
    if (!target) return Failure{target.error()};

    const ByteCopy copy{from, temporary, source->file, target->file(), source->values.st_size, stop};
    const auto copied = copyBytes(copy, reading);
    if (!copied) return Failure{copied.error()};
    keepAttributes(*source, target->file());
    // The medium begins to write now, so that syncing a few copies later waits for little.
    (void)::sync_file_range(target->file().get(), 0, 0, SYNC_FILE_RANGE_WRITE);
    return std::unique_ptr<PendingCopy>{new LinuxFileCopy{std::move(*target), *copied}};
}

Result<std::unique_ptr<PendingCopy>, FileError> LinuxFileSystem::createFile(const FileURL& temporary,
                                                                            std::string_view bytes) {
    auto file = LockedFile::create(temporary, 0666);
    if (!file) return Failure{file.error()};
    if (!writeAll(file->file(), bytes)) return Failure{fileError(temporary)};
    const CopiedBytes written{static_cast<std::int64_t>(bytes.size()), {}};
    return std::unique_ptr<PendingCopy>{new LinuxFileCopy{std::move(*file), written}};
}

Result<bool, FileError> LinuxFileSystem::haveSameContents(const FileURL& file, const FileURL& onMedium,
                                                          std::stop_token stop) const {
    using Way = SequentialReader::Way;
    const auto first = openSource(file);
    if (!first) return Failure{first.error()};
    const auto second = openSource(onMedium);
    if (!second) return Failure{second.error()};
    if (first->values.st_size != second->values.st_size) return false;

    SequentialReader firstReader{first->file, first->values.st_size, Way::cached};
    SequentialReader secondReader{second->file, second->values.st_size, Way::onMedium};
    const AlignedBuffer firstBuffer{directTransferSize};
    const AlignedBuffer secondBuffer{directTransferSize};
    for (;;) {
        if (stop.stop_requested()) return Failure{fileError(file, ECANCELED)};
        const auto firstBytes = firstReader.next(firstBuffer);
        if (!firstBytes) return Failure{fileError(file)};
        const auto secondBytes = secondReader.next(secondBuffer);
        if (!secondBytes) return Failure{fileError(onMedium)};
        if (*firstBytes != *secondBytes) return false;
        if (firstBytes->empty()) return true;
    }
}

} // namespace kelvara
