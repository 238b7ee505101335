#include "platform/linux/ByteCopy.h"

#include "platform/linux/DirectIO.h"
#include "platform/linux/FileWriting.h"
#include "platform/linux/SequentialReader.h"

#include <fcntl.h>
#include <iterator>
#include <linux/fs.h>
#include <sys/ioctl.h>

namespace kelvara {

namespace {

/// Files from this size on are written past the page cache.
constexpr std::int64_t directFileSize = 4 * 1024 * 1024;
/// Small enough that a buffer stays in the processor's cache.
constexpr std::size_t cachedTransferSize = 256 * 1024;
/// What the kernel copies between two looks at the stop token.
constexpr std::size_t kernelTransferSize = 4 * 1024 * 1024;

Failure<FileError> cancelled(const ByteCopy& copy) { return Failure{fileError(copy.from, ECANCELED)}; }

/// Writes a file from its start to its end, past the page cache as far as its file system takes that.
class Writer {
public:
    Writer(const FileDescriptor& file, std::int64_t size)
        : m_file{file}, m_isDirect{size >= directFileSize && setDirect(file, true)} {}

    [[nodiscard]] bool isDirect() const { return m_isDirect; }
    /// Bytes that were written into the page cache.
    [[nodiscard]] std::int64_t cachedBytes() const { return m_cachedBytes; }

    /// Leaves its reason in errno when it gives false.
    [[nodiscard]] bool write(std::string_view bytes) {
        while (m_isDirect && !bytes.empty()) {
            const auto whole = bytes.size() / directAlignment * directAlignment;
            const auto count =
                whole == 0 ? 0 : uninterrupted([&] { return ::write(m_file.get(), bytes.data(), whole); });
            if (count < 0 && errno != EINVAL) return false;
            if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
            // The rest of the last block, what a refused or short write left: all that is no whole block.
            const bool isAligned = count > 0 && static_cast<std::size_t>(count) % directAlignment == 0;
            if (!isAligned && !leaveDirect()) return false;
        }
        m_cachedBytes += std::ssize(bytes);
        return writeAll(m_file, bytes);
    }

private:
    bool leaveDirect() {
        m_isDirect = false;
        return setDirect(m_file, false);
    }

    const FileDescriptor& m_file;
    bool m_isDirect;
    std::int64_t m_cachedBytes = 0;
};

/// Reads the rest of the source and writes it; `hasher` may be null.
Result<void, FileError> readAndWrite(const ByteCopy& copy, SequentialReader reader, Writer& writer,
                                     ContentHasher* hasher) {
    const AlignedBuffer buffer{writer.isDirect() ? directTransferSize : cachedTransferSize};
    for (;;) {
        if (copy.stop.stop_requested()) return cancelled(copy);
        const auto bytes = reader.next(buffer);
        if (!bytes) return Failure{fileError(copy.from)};
        if (bytes->empty()) return {};
        if (hasher != nullptr) hasher->add(*bytes);
        if (!writer.write(*bytes)) return Failure{fileError(copy.to)};
    }
}

/// Copies within the kernel as far as that goes and gives how far. Whatever the reason for an end, the rest
/// is to be read and written, and that reason is the one that counts. Some file systems give 0 before the
/// end.
loff_t copyInKernel(const ByteCopy& copy) {
    loff_t position = 0;
    while (!copy.stop.stop_requested()) {
        const auto count = uninterrupted([&] {
            return ::copy_file_range(copy.source.get(), &position, copy.target.get(), nullptr,
                                     kernelTransferSize, 0);
        });
        if (count <= 0) break;
    }
    return position;
}

} // namespace

Result<CopiedBytes, FileError> copyBytes(const ByteCopy& copy, CopyReading reading) {
    const bool isHashed = reading == CopyReading::hashed;
    if (copy.stop.stop_requested()) return cancelled(copy);
    if (!isHashed && ::ioctl(copy.target.get(), FICLONE, copy.source.get()) == 0) return CopiedBytes{};

    SequentialReader reader{copy.source, copy.size, SequentialReader::Way::cached};
    Writer writer{copy.target, copy.size};
    const auto copiedInKernel = isHashed || writer.isDirect() ? 0 : copyInKernel(copy);
    reader.skipTo(copiedInKernel);
    ContentHasher hasher;
    const auto copied = readAndWrite(copy, reader, writer, isHashed ? &hasher : nullptr);
    if (!copied) return Failure{copied.error()};
    return CopiedBytes{copiedInKernel + writer.cachedBytes(), hasher.hash()};
}

} // namespace kelvara
