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

Bitmap::Bitmap(PixelSize size, ColorProfilePtr profile)
    : m_size{size}, m_rowBytes{static_cast<std::size_t>(size.width) * 4}, m_profile{std::move(profile)} {}

std::unique_ptr<Bitmap> Bitmap::create(PixelSize size, ColorProfilePtr profile) {
    if (size.isEmpty() || size.pixels() > maximumPixels) return nullptr;
    std::unique_ptr<Bitmap> bitmap{new Bitmap{size, std::move(profile)}};
    bitmap->m_data.reset(new (std::nothrow) std::uint8_t[bitmap->byteCount()]);
    if (!bitmap->m_data) return nullptr;
    return bitmap;
}

} // namespace kelvara
