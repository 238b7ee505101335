#include "imaging/codecs/RangeIo.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

namespace kelvara {
namespace {

constexpr std::size_t blockSize = std::size_t{32} * 1024;
constexpr long largestRead = 8L * 1024 * 1024;
constexpr std::uint64_t largestCopy = std::uint64_t{16} * 1024 * 1024;

} // namespace

int RangeIo::open() {
    m_position = 0;
    m_isAtEnd = false;
    return 0;
}

long RangeIo::read(Exiv2::byte* to, long count) {
    long done = 0;
    while (done < count) {
        const bool isInBlock = m_position >= m_blockStart && m_position - m_blockStart < m_block.size();
        if (!isInBlock) {
            m_blockStart = m_position / blockSize * blockSize;
            m_block.resize(blockSize);
            m_block.resize(m_bytes.read(m_blockStart, m_block));
            if (m_position - m_blockStart >= m_block.size()) {
                m_isAtEnd = true;
                break;
            }
        }
        const auto at = static_cast<std::size_t>(m_position - m_blockStart);
        const auto part = std::min(m_block.size() - at, static_cast<std::size_t>(count - done));
        std::memcpy(to + done, m_block.data() + at, part);
        done += static_cast<long>(part);
        m_position += part;
    }
    return done;
}

Exiv2::DataBuf RangeIo::read(long count) {
    const auto rest = m_position < m_bytes.size() ? m_bytes.size() - m_position : 0;
    const auto most = static_cast<long>(std::min<std::uint64_t>(rest, largestRead));
    Exiv2::DataBuf buffer{std::clamp(count, 0L, most)};
    buffer.size_ = read(buffer.pData_, buffer.size_);
    if (buffer.size_ < count) m_isAtEnd = true;
    return buffer;
}

int RangeIo::getb() {
    Exiv2::byte value = 0;
    return read(&value, 1) == 1 ? value : EOF;
}

int RangeIo::seek(long offset, Position from) {
    const auto size = static_cast<std::int64_t>(m_bytes.size());
    const std::int64_t base = from == beg ? 0 : from == cur ? static_cast<std::int64_t>(m_position) : size;
    if (offset < -base || offset > size - base) {
        m_isAtEnd = true;
        return 1;
    }
    m_position = static_cast<std::uint64_t>(base + offset);
    m_isAtEnd = false;
    return 0;
}

Exiv2::byte* RangeIo::mmap(bool) {
    if (m_bytes.size() > largestCopy) throw Exiv2::Error{Exiv2::kerMallocFailed};
    if (m_copy.empty()) m_copy = m_bytes.bytes(0, static_cast<std::size_t>(m_bytes.size()));
    // What could not be read must not be looked for.
    if (m_copy.size() != m_bytes.size()) throw Exiv2::Error{Exiv2::kerCallFailed};
    return m_copy.data();
}

// The library's smart pointer is an old one.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
std::unique_ptr<Exiv2::Image> openByExiv2(ByteRange bytes) {
    auto image = Exiv2::ImageFactory::open(Exiv2::BasicIo::AutoPtr{new RangeIo{std::move(bytes)}});
    return std::unique_ptr<Exiv2::Image>{image.release()};
}
#pragma GCC diagnostic pop

} // namespace kelvara
