#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kelvara::samplecard {

/// An upright picture in sRGB: encoded samples of 16 bits, RGB interleaved, rows from the top without
/// padding.
struct Picture {
    Picture() = default;
    Picture(int width, int height);

    int width = 0;
    int height = 0;
    std::vector<std::uint16_t> samples;

    [[nodiscard]] std::uint16_t* at(int x, int y) { return samples.data() + offset(x, y); }
    [[nodiscard]] const std::uint16_t* at(int x, int y) const { return samples.data() + offset(x, y); }
    friend bool operator==(const Picture&, const Picture&) = default;

private:
    [[nodiscard]] std::size_t offset(int x, int y) const {
        return (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) *
               3;
    }
};

/// Averages down until the longer side has `longestSide` pixels; a picture that is smaller stays as it is.
Picture scaledTo(const Picture& picture, int longestSide);

/// The picture, whole and centred, between black bars: what cameras store as their EXIF thumbnail.
Picture letterboxed(const Picture& picture, int width, int height);

/// The part whose top left pixel is (`left`, `top`); it must lie within the picture.
Picture cropped(const Picture& picture, int left, int top, int width, int height);

/// As if exposed `stops` longer, clipping at white.
Picture exposed(const Picture& picture, float stops);

/// How the sensor would have stored an upright picture whose EXIF orientation is `orientation` (1 to 8).
Picture storedWith(const Picture& upright, int orientation);

} // namespace kelvara::samplecard
