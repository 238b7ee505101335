#include "platform/linux/SequentialReader.h"

#include "platform/linux/FileWriting.h"

#include <fcntl.h>
#include <sys/uio.h>

namespace kelvara {

namespace {

/// Whether the byte is in the page cache; a file system that can't tell counts as if it were.
bool isCached(const FileDescriptor& file, std::int64_t position) {
    char byte = 0;
    const struct iovec target { &byte, 1 };
    return ::preadv2(file.get(), &target, 1, position, RWF_NOWAIT) >= 0 || errno != EAGAIN;
}

} // namespace

SequentialReader::SequentialReader(const FileDescriptor& file, std::int64_t size, Way way) : m_file{file} {
    if (way == Way::onMedium) {
        m_isDirect = setDirect(file, true);
        m_dropsCache = !m_isDirect;
        if (m_dropsCache) (void)::posix_fadvise(file.get(), 0, 0, POSIX_FADV_DONTNEED);
    } else {
        // The middle, because others who look at a photo read its start.
        m_dropsCache = size > 0 && !isCached(file, size / 2);
    }
    (void)::posix_fadvise(file.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
}

std::optional<std::string_view> SequentialReader::next(const AlignedBuffer& buffer) {
    dropWhatWasRead();
    std::size_t length = 0;
    while (length < buffer.size()) {
        const auto count = uninterrupted([&] {
            return ::pread(m_file.get(), buffer.data() + length, buffer.size() - length, m_position);
        });
        if (count < 0 && errno == EINVAL && m_isDirect) { // refused only now, or misaligned at the end
            m_isDirect = false;
            m_dropsCache = true;
            if (!setDirect(m_file, false)) return std::nullopt;
            (void)::posix_fadvise(m_file.get(), m_position, 0, POSIX_FADV_DONTNEED);
            continue;
        }
        if (count < 0) return std::nullopt;
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
        m_position += count;
    }
    if (length == buffer.size()) readAhead(length);
    return std::string_view{buffer.data(), length};
}

/// So that the source's disk reads while the target's writes.
void SequentialReader::readAhead(std::size_t length) const {
    if (m_isDirect) return;
    (void)::posix_fadvise(m_file.get(), m_position, static_cast<off_t>(length), POSIX_FADV_WILLNEED);
}

void SequentialReader::dropWhatWasRead() {
    if (!m_dropsCache || m_position == m_dropped) return;
    (void)::posix_fadvise(m_file.get(), m_dropped, m_position - m_dropped, POSIX_FADV_DONTNEED);
    m_dropped = m_position;
}

} // namespace kelvara
