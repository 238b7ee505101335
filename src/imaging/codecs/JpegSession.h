#pragma once

#include "imaging/codecs/ByteSource.h"
#include "imaging/codecs/JumpGuard.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <stop_token>

#include <jpeglib.h>

namespace kelvara {

/// One decompression by libjpeg that reads from a range of bytes.
class JpegSession : public JumpGuard {
public:
    /// A stop makes the library give up between two rows, or two parts of a progressive file.
    explicit JpegSession(ByteRange bytes, std::stop_token stop = {});
    ~JpegSession();
    JpegSession(const JpegSession&) = delete;
    JpegSession& operator=(const JpegSession&) = delete;

    [[nodiscard]] jpeg_decompress_struct& state() { return m_state; }

private:
    struct Input {
        jpeg_source_mgr manager{}; // first, so that the library's pointer is also ours
        ByteRange bytes;
        std::uint64_t position = 0;
        std::size_t nextFill = 4096; // headers are often all that is wanted, and cards are slow
        std::array<std::uint8_t, 256 * 1024> buffer;
    };
    struct Progress {
        jpeg_progress_mgr manager{}; // first, for the same reason
        std::stop_token stop;
    };
    static void giveUp(j_common_ptr state);
    static void silence(j_common_ptr state, int level);
    static void checkProgress(j_common_ptr state);
    static boolean fill(j_decompress_ptr state);
    static void skip(j_decompress_ptr state, long count);

    jpeg_decompress_struct m_state{};
    jpeg_error_mgr m_errors{};
    Input m_input;
    Progress m_progress;
};

} // namespace kelvara
