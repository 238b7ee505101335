#pragma once

#include "imaging/ColorProfile.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace kelvara {

struct PixelSize {
    int width = 0;
    int height = 0;

    [[nodiscard]] int longestSide() const { return width > height ? width : height; }
    [[nodiscard]] std::int64_t pixels() const { return std::int64_t{width} * height; }
    [[nodiscard]] bool isEmpty() const { return width <= 0 || height <= 0; }
    [[nodiscard]] PixelSize transposed() const { return {height, width}; }
    /// Scaled down so that its longest side is `maximum`, at least one pixel each way; itself when small
    /// enough.
    [[nodiscard]] PixelSize fittedTo(int maximum) const;

    friend bool operator==(const PixelSize&, const PixelSize&) = default;
};

enum class PixelFormat {
    /// Four bytes a pixel: blue, green, red and one that means nothing (255). On little-endian machines these
    /// are 0xffRRGGBB words, which a QImage of Format_RGB32 wraps without a copy.
    bgrx8,
    /// Four 16-bit numbers a pixel in the machine's byte order: blue, green, red and one that means nothing
    /// (65535). For export only.
    bgrx16,
};

[[nodiscard]] constexpr std::size_t bytesPerPixel(PixelFormat format) {
    return format == PixelFormat::bgrx8 ? 4 : 8;
}

/// A decoded picture, upright, in the colour space that it names. Made and filled by one thread, then shared
/// as `BitmapPtr`, from when on nobody can change it.
class Bitmap {
public:
    /// No picture has more pixels: a gibibyte's worth of 8 bits, far above any camera's. Larger ones are
    /// refused before memory is asked for.
    static constexpr std::int64_t maximumPixels = std::int64_t{1} << 28;

    /// Pixels start undefined. Null when the size is empty or too large, or memory is short.
    [[nodiscard]] static std::unique_ptr<Bitmap> create(PixelSize size, ColorProfilePtr profile,
                                                        PixelFormat format = PixelFormat::bgrx8);
    ~Bitmap();
    /// The memory of the last large picture waits for the next one; this gives it back, before something that
    /// takes much itself. Any thread.
    static void dropSpareMemory();
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;

    [[nodiscard]] PixelSize size() const { return m_size; }
    [[nodiscard]] int width() const { return m_size.width; }
    [[nodiscard]] int height() const { return m_size.height; }
    [[nodiscard]] PixelFormat format() const { return m_format; }
    /// Distance from one row to the next, in bytes.
    [[nodiscard]] std::size_t rowBytes() const { return m_rowBytes; }
    [[nodiscard]] std::size_t byteCount() const {
        return m_rowBytes * static_cast<std::size_t>(m_size.height);
    }
    [[nodiscard]] const ColorProfilePtr& profile() const { return m_profile; }

    /// The whole picture, top row first.
    [[nodiscard]] const std::uint8_t* data() const { return m_data; }
    [[nodiscard]] std::uint8_t* data() { return m_data; }
    /// One row's pixels, 0 is the top.
    [[nodiscard]] std::span<const std::uint8_t> row(int y) const { return {data() + offset(y), m_rowBytes}; }
    [[nodiscard]] std::span<std::uint8_t> row(int y) { return {data() + offset(y), m_rowBytes}; }
    /// One row's numbers of a bitmap of 16 bits.
    [[nodiscard]] std::span<const std::uint16_t> row16(int y) const {
        return {reinterpret_cast<const std::uint16_t*>(data() + offset(y)), m_rowBytes / 2};
    }
    [[nodiscard]] std::span<std::uint16_t> row16(int y) {
        return {reinterpret_cast<std::uint16_t*>(data() + offset(y)), m_rowBytes / 2};
    }

private:
    Bitmap(PixelSize size, ColorProfilePtr profile, PixelFormat format);
    [[nodiscard]] std::size_t offset(int y) const { return m_rowBytes * static_cast<std::size_t>(y); }

    PixelSize m_size;
    PixelFormat m_format;
    std::size_t m_rowBytes;
    ColorProfilePtr m_profile;
    std::uint8_t* m_data = nullptr; // owned
};

/// How many bits a channel a picture is wanted with: eight, or sixteen where its file has more than eight.
enum class Depth { eight, full };

/// Null stands for "no image": not there, not readable, not wanted any more.
using BitmapPtr = std::shared_ptr<const Bitmap>;

/// The same picture with 16 bits a channel; itself when it has them. Null for null and when memory is short.
[[nodiscard]] BitmapPtr widened(BitmapPtr bitmap);

} // namespace kelvara
