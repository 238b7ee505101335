#include "imaging/writing/RowsInFormat.h"

#include <array>
#include <cstddef>
#include <span>

namespace kelvara {
namespace {

constexpr unsigned step = 257; // of 16 bits to one of 8
constexpr unsigned side = 8;

/// What is added before cutting off, between 0 and a step: each of 64 neighbours another part of it, those
/// beside each other far apart.
constexpr auto thresholds = [] {
    std::array<std::array<std::uint16_t, side>, side> result{};
    for (unsigned y = 0; y < side; ++y) {
        for (unsigned x = 0; x < side; ++x) {
            // The bits of x ^ y and y by turns, the lowest first: Bayer's matrix.
            unsigned rank = 0;
            for (unsigned bit = 0; bit < 3; ++bit)
                rank = rank << 2 | ((x ^ y) >> bit & 1U) << 1 | (y >> bit & 1U);
            result[y][x] = static_cast<std::uint16_t>((2 * rank + 1) * step / (2 * side * side));
        }
    }
    return result;
}();

void dither(std::span<const std::uint16_t> from, int y, std::uint8_t* to) {
    const auto& line = thresholds[static_cast<unsigned>(y) % side];
    for (std::size_t i = 0; i < from.size(); ++i)
        to[i] = static_cast<std::uint8_t>((from[i] + unsigned{line[i / 4 % side]}) / step);
}

void widen(std::span<const std::uint8_t> from, std::uint8_t* bytes) {
    auto* to = reinterpret_cast<std::uint16_t*>(bytes);
    for (const unsigned value : from) *to++ = static_cast<std::uint16_t>(value * step);
}

} // namespace

RowsInFormat::RowsInFormat(const Bitmap& image, PixelFormat format)
    : m_image{image}, m_format{format},
      m_line(image.format() == format ? 0 : static_cast<std::size_t>(image.width()) * bytesPerPixel(format)) {
}

const std::uint8_t* RowsInFormat::row(int y) {
    if (m_line.empty()) return m_image.row(y).data();
    if (m_format == PixelFormat::bgrx8)
        dither(m_image.row16(y), y, m_line.data());
    else
        widen(m_image.row(y), m_line.data());
    return m_line.data();
}

} // namespace kelvara
