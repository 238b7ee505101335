#pragma once

#include "imaging/codecs/ByteSource.h"
#include "imaging/codecs/JumpGuard.h"

#include <cstdint>

#include <png.h>

namespace kelvara {

/// One reading by libpng from a range of bytes.
class PngSession : public JumpGuard {
public:
    explicit PngSession(ByteRange bytes);
    ~PngSession();
    PngSession(const PngSession&) = delete;
    PngSession& operator=(const PngSession&) = delete;

    [[nodiscard]] png_structp state() { return m_state; }
    [[nodiscard]] png_infop info() { return m_info; }

private:
    static void giveUp(png_structp state, png_const_charp message);
    static void read(png_structp state, png_bytep to, std::size_t count);

    ByteRange m_bytes;
    std::uint64_t m_position = 0;
    png_structp m_state = nullptr;
    png_infop m_info = nullptr;
};

} // namespace kelvara
