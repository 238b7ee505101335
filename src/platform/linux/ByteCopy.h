#pragma once

#include "model/Result.h"
#include "platform/FileSystem.h"
#include "platform/linux/ContentHash.h"
#include "platform/linux/FileDescriptor.h"

#include <cstdint>
#include <stop_token>

namespace kelvara {

/// One file's bytes on their way into another; both are open and at their start.
struct ByteCopy {
    const FileURL& from;
    const FileURL& to;
    const FileDescriptor& source;
    const FileDescriptor& target;
    std::int64_t size = 0; ///< The source's, when it was opened.
    const std::stop_token& stop;
};

struct CopiedBytes {
    std::int64_t unwritten = 0; ///< Those that wait in the page cache.
    ContentHash hash;           ///< Of what was read of the source, if it had to be.
};

/// Copies in the cheapest way that both file systems know: sharing the blocks, for large files past the page
/// cache, within the kernel, through a buffer. Where all is to be hashed, it is read, once.
Result<CopiedBytes, FileError> copyBytes(const ByteCopy& copy, CopyReading reading);

} // namespace kelvara
