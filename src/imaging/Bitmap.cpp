#include "imaging/Bitmap.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

namespace kelvara {

PixelSize PixelSize::fittedTo(int maximum) const {
    const int longest = longestSide();
    if (longest <= maximum) return *this;
    const auto scaled = [&](int side) {
        return std::max(1, static_cast<int>(std::lround(static_cast<double>(side) * maximum / longest)));
    };
    return {scaled(width), scaled(height)};
}

Bitmap::Bitmap(PixelSize size, ColorProfilePtr profile, PixelFormat format)
    : m_size{size}, m_format{format},
      m_rowBytes{static_cast<std::size_t>(size.width) * bytesPerPixel(format)}, m_profile{
                                                                                    std::move(profile)} {}

std::unique_ptr<Bitmap> Bitmap::create(PixelSize size, ColorProfilePtr profile, PixelFormat format) {
    if (size.isEmpty() || size.pixels() > maximumPixels) return nullptr;
    std::unique_ptr<Bitmap> bitmap{new Bitmap{size, std::move(profile), format}};
    bitmap->m_data.reset(new (std::nothrow) std::uint8_t[bitmap->byteCount()]);
    if (!bitmap->m_data) return nullptr;
    return bitmap;
}

BitmapPtr widened(BitmapPtr bitmap) {
    if (!bitmap || bitmap->format() == PixelFormat::bgrx16) return bitmap;
    auto result = Bitmap::create(bitmap->size(), bitmap->profile(), PixelFormat::bgrx16);
    if (!result) return nullptr;
    for (int y = 0; y < bitmap->height(); ++y) {
        // 257 takes 255 to 65535.
        std::ranges::transform(bitmap->row(y), result->row16(y).begin(),
                               [](unsigned value) { return static_cast<std::uint16_t>(value * 257); });
    }
    return result;
}

} // namespace kelvara
