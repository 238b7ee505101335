#pragma once

#include "platform/linux/DirectIO.h"
#include "platform/linux/FileDescriptor.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace kelvara {

/// Reads an open file once, from its start to its end. The file outlives it.
class SequentialReader {
public:
    enum class Way {
        cached,   ///< Through the page cache, which keeps what was in it before and nothing else.
        onMedium, ///< What the medium holds, as far as the file system can be made to look there.
    };

    /// `size` is the file's, as far as known; it only serves to read ahead and to look into the cache.
    SequentialReader(const FileDescriptor& file, std::int64_t size, Way way);

    /// Leaves out what comes before.
    void skipTo(std::int64_t position) { m_position = position; }

    /// The next bytes, in `buffer`: all of it, or less at the end of the file, where they are empty at last.
    /// Nothing, with the reason in errno, when they can't be read.
    [[nodiscard]] std::optional<std::string_view> next(const AlignedBuffer& buffer);

private:
    void readAhead(std::size_t length) const;
    void dropWhatWasRead();

    const FileDescriptor& m_file;
    std::int64_t m_position = 0;
    std::int64_t m_dropped = 0; // up to here
    bool m_isDirect = false;
    bool m_dropsCache = false; // the pages are here because of this reader
};

} // namespace kelvara
