#include "imaging/codecs/ByteSource.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace kelvara {
namespace {

class FileBytes : public ByteSource {
public:
    FileBytes(int descriptor, std::uint64_t size) : m_descriptor{descriptor}, m_size{size} {}
    FileBytes(const FileBytes&) = delete;
    FileBytes& operator=(const FileBytes&) = delete;
    ~FileBytes() override { ::close(m_descriptor); }

    [[nodiscard]] std::uint64_t size() const override { return m_size; }

    [[nodiscard]] std::size_t read(std::uint64_t offset, std::span<std::uint8_t> to) const override {
        if (offset >= m_size) return 0;
        std::size_t done = 0;
        while (done < to.size()) {
            const auto count =
                ::pread(m_descriptor, to.data() + done, to.size() - done, static_cast<off_t>(offset + done));
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) break; // the end, or a card that was pulled out
            done += static_cast<std::size_t>(count);
        }
        return done;
    }

private:
    int m_descriptor;
    std::uint64_t m_size;
};

class MemoryBytes : public ByteSource {
public:
    explicit MemoryBytes(std::vector<std::uint8_t> bytes) : m_bytes{std::move(bytes)} {}

    [[nodiscard]] std::uint64_t size() const override { return m_bytes.size(); }

    [[nodiscard]] std::size_t read(std::uint64_t offset, std::span<std::uint8_t> to) const override {
        if (offset >= m_bytes.size()) return 0;
        const auto count = std::min(to.size(), m_bytes.size() - static_cast<std::size_t>(offset));
        std::copy_n(m_bytes.begin() + static_cast<std::ptrdiff_t>(offset), count, to.begin());
        return count;
    }

private:
    std::vector<std::uint8_t> m_bytes;
};

} // namespace

ByteSourcePtr ByteSource::ofFile(const FileURL& url) {
    // A named pipe must not hold a decoding thread until somebody writes to it.
    const int descriptor = ::open(url.path().c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return nullptr;
    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(descriptor);
        return nullptr;
    }
    return std::make_shared<FileBytes>(descriptor, static_cast<std::uint64_t>(status.st_size));
}

ByteSourcePtr ByteSource::ofMemory(std::vector<std::uint8_t> bytes) {
    return std::make_shared<MemoryBytes>(std::move(bytes));
}

ByteRange::ByteRange(ByteSourcePtr source)
    : m_source{std::move(source)}, m_size{m_source ? m_source->size() : 0} {}

ByteRange ByteRange::part(std::uint64_t offset, std::uint64_t length) const {
    ByteRange result;
    if (offset >= m_size) return result;
    result.m_source = m_source;
    result.m_offset = m_offset + offset;
    result.m_size = std::min(length, m_size - offset);
    return result;
}

std::size_t ByteRange::read(std::uint64_t offset, std::span<std::uint8_t> to) const {
    if (offset >= m_size) return 0;
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(to.size(), m_size - offset));
    return m_source->read(m_offset + offset, to.first(count));
}

std::vector<std::uint8_t> ByteRange::bytes(std::uint64_t offset, std::size_t length) const {
    if (offset > m_size || length > m_size - offset) return {};
    std::vector<std::uint8_t> result(length);
    if (read(offset, result) != length) return {};
    return result;
}

} // namespace kelvara
