#include "imaging/Letterbox.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace kelvara {

PixelRectangle pictureInside(PixelSize preview, PixelSize picture) {
    const double ratio = static_cast<double>(picture.width) / picture.height;
    PixelRectangle part{0, 0, preview};
    // Half a spare pixel goes to the top or left.
    if (static_cast<double>(preview.width) / preview.height < ratio) {
        part.size.height = static_cast<int>(std::floor(preview.width / ratio));
        part.y = static_cast<int>(std::ceil((preview.height - part.size.height) * 0.5));
    } else {
        part.size.width = static_cast<int>(std::floor(ratio * preview.height));
        part.x = static_cast<int>(std::ceil((preview.width - part.size.width) * 0.5));
    }
    return part;
}

BitmapPtr cut(const Bitmap& bitmap, const PixelRectangle& part) {
    auto result = Bitmap::create(part.size, bitmap.profile(), bitmap.format());
    if (!result) return nullptr;
    const auto left = static_cast<std::size_t>(part.x) * bytesPerPixel(bitmap.format());
    for (int y = 0; y < part.size.height; ++y) {
        const auto from = bitmap.row(part.y + y).subspan(left);
        std::memcpy(result->row(y).data(), from.data(), result->rowBytes());
    }
    return result;
}

bool hasBlackBars(const Bitmap& bitmap, const PixelRectangle& part) {
    // Compression smears the picture's edge over a few of the bars' pixels.
    constexpr std::uint8_t brightestBlack = 40;
    constexpr std::int64_t mostBrightShare = 20;
    std::int64_t bright = 0;
    const auto look = [&](int y, int left, int right) {
        const auto row = bitmap.row(y);
        for (auto i = static_cast<std::size_t>(left) * 4; i < static_cast<std::size_t>(right) * 4; i += 4) {
            if (std::max({row[i], row[i + 1], row[i + 2]}) > brightestBlack) ++bright;
        }
    };
    for (int y = 0; y < bitmap.height(); ++y) {
        const bool isBeside = y >= part.y && y < part.y + part.size.height;
        look(y, 0, isBeside ? part.x : bitmap.width());
        if (isBeside) look(y, part.x + part.size.width, bitmap.width());
    }
    return bright * mostBrightShare <= bitmap.size().pixels() - part.size.pixels();
}

} // namespace kelvara
