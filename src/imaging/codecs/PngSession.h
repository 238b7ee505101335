#pragma once

#include "imaging/codecs/ByteSource.h"

#include <csetjmp>
#include <cstdint>

#include <png.h>

namespace kelvara {

/// One reading by libpng from a range of bytes. The library reports fatal errors by a jump, which never
/// leaves `guarded`.
class PngSession {
public:
    explicit PngSession(ByteRange bytes);
    ~PngSession();
    PngSession(const PngSession&) = delete;
    PngSession& operator=(const PngSession&) = delete;

    [[nodiscard]] png_structp state() { return m_state; }
    [[nodiscard]] png_infop info() { return m_info; }

    /// Runs `call`, which may call the library; false when the library gave up. As an error jumps over it,
    /// `call` must own nothing: captures by reference and plain locals only.
    template <typename Call> bool guarded(Call call) {
        if (m_hasFailed || setjmp(m_jump) != 0) {
            m_hasFailed = true;
            return false;
        }
        call();
        return true;
    }

private:
    static void fail(png_structp state, png_const_charp message);
    static void read(png_structp state, png_bytep to, std::size_t count);

    ByteRange m_bytes;
    std::uint64_t m_position = 0;
    std::jmp_buf m_jump{};
    bool m_hasFailed = false;
    png_structp m_state = nullptr;
    png_infop m_info = nullptr;
};

} // namespace kelvara
