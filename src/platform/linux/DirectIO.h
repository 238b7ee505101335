#pragma once

#include "platform/linux/FileDescriptor.h"

#include <cstddef>
#include <memory>
#include <new>

namespace kelvara {

/// What direct reads and writes must be multiples of, in memory and in the file. Media with larger blocks
/// refuse them, which is met like any other refusal.
inline constexpr std::size_t directAlignment = 4096;

/// What one direct read or write moves: enough to keep a fast disk busy.
inline constexpr std::size_t directTransferSize = 1024 * 1024;

/// Memory that direct reads and writes take.
class AlignedBuffer {
public:
    explicit AlignedBuffer(std::size_t size)
        : m_size{size}, m_bytes{static_cast<char*>(::operator new[](size, alignment))} {}

    [[nodiscard]] char* data() const { return m_bytes.get(); }
    [[nodiscard]] std::size_t size() const { return m_size; }

private:
    static constexpr std::align_val_t alignment{directAlignment};
    struct Deleter {
        void operator()(char* bytes) const { ::operator delete[](bytes, alignment); }
    };
    std::size_t m_size;
    std::unique_ptr<char[], Deleter> m_bytes;
};

/// Makes an open file's reads and writes go past the page cache, or through it again. False where the file
/// system does not do that.
[[nodiscard]] bool setDirect(const FileDescriptor& file, bool isDirect);

} // namespace kelvara
