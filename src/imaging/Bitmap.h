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
    /// are
    /// 0xffRRGGBB words, which a QImage of Format_RGB32 wraps without a copy.
    bgrx8,
};

/// A decoded picture, upright, in the colour space that it names. Made and filled by one thread, then shared
/// as `BitmapPtr`, from when on nobody can change it.
class Bitmap {
public:
    /// No picture has more pixels: a gibibyte's worth, far above any camera's. Larger ones are refused before
    /// memory is asked for.
    static constexpr std::int64_t maximumPixels = std::int64_t{1} << 28;

    /// Pixels start undefined. Null when the size is empty or too large, or memory is short.
    [[nodiscard]] static std::unique_ptr<Bitmap> create(PixelSize size, ColorProfilePtr profile);
    ~Bitmap();
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;

    [[nodiscard]] PixelSize size() const { return m_size; }
    [[nodiscard]] int width() const { return m_size.width; }
    [[nodiscard]] int height() const { return m_size.height; }
    [[nodiscard]] PixelFormat format() const { return PixelFormat::bgrx8; }
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

private:
    Bitmap(PixelSize size, ColorProfilePtr profile);
    [[nodiscard]] std::size_t offset(int y) const { return m_rowBytes * static_cast<std::size_t>(y); }

    PixelSize m_size;
    std::size_t m_rowBytes;
    ColorProfilePtr m_profile;
    std::uint8_t* m_data = nullptr; // owned
};

/// Null stands for "no image": not there, not readable, not wanted any more.
using BitmapPtr = std::shared_ptr<const Bitmap>;

} // namespace kelvara
