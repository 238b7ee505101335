#include "samplecard/Picture.h"

#include "samplecard/Colour.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace kelvara::samplecard {

Picture::Picture(int pictureWidth, int pictureHeight)
    : width{pictureWidth}, height{pictureHeight},
      samples(static_cast<std::size_t>(pictureWidth) * static_cast<std::size_t>(pictureHeight) * 3) {}

namespace {

Picture averagedTo(const Picture& picture, int width, int height) {
    Picture result{width, height};
    for (int y = 0; y < height; ++y) {
        const int top = static_cast<int>(std::int64_t{y} * picture.height / height);
        const int bottom = std::max(top + 1, static_cast<int>(std::int64_t{y + 1} * picture.height / height));
        for (int x = 0; x < width; ++x) {
            const int left = static_cast<int>(std::int64_t{x} * picture.width / width);
            const int right =
                std::max(left + 1, static_cast<int>(std::int64_t{x + 1} * picture.width / width));
            std::uint64_t sums[3] = {0, 0, 0};
            for (int row = top; row < bottom; ++row) {
                const std::uint16_t* source = picture.at(left, row);
                for (int column = left; column < right; ++column, source += 3) {
                    sums[0] += source[0];
                    sums[1] += source[1];
                    sums[2] += source[2];
                }
            }
            const auto count =
                static_cast<std::uint64_t>(right - left) * static_cast<std::uint64_t>(bottom - top);
            for (int channel = 0; channel < 3; ++channel)
                result.at(x, y)[channel] = static_cast<std::uint16_t>((sums[channel] + count / 2) / count);
        }
    }
    return result;
}

} // namespace

Picture scaledTo(const Picture& picture, int longestSide) {
    const int longest = std::max(picture.width, picture.height);
    if (longest <= longestSide) return picture;
    const auto scaled = [&](int side) {
        return std::max(1, static_cast<int>((std::int64_t{side} * longestSide + longest / 2) / longest));
    };
    return averagedTo(picture, scaled(picture.width), scaled(picture.height));
}

Picture letterboxed(const Picture& picture, int width, int height) {
    const double scale = std::min(
        {1.0, static_cast<double>(width) / picture.width, static_cast<double>(height) / picture.height});
    const Picture inner =
        averagedTo(picture, std::max(1, static_cast<int>(std::lround(picture.width * scale))),
                   std::max(1, static_cast<int>(std::lround(picture.height * scale))));
    Picture result{width, height};
    const int left = (width - inner.width) / 2;
    const int top = (height - inner.height) / 2;
    for (int y = 0; y < inner.height; ++y)
        std::copy_n(inner.at(0, y), static_cast<std::size_t>(inner.width) * 3, result.at(left, top + y));
    return result;
}

Picture cropped(const Picture& picture, int left, int top, int width, int height) {
    assert(left >= 0 && top >= 0 && left + width <= picture.width && top + height <= picture.height);
    Picture result{width, height};
    for (int y = 0; y < height; ++y)
        std::copy_n(picture.at(left, top + y), static_cast<std::size_t>(width) * 3, result.at(0, y));
    return result;
}

Picture exposed(const Picture& picture, float stops) {
    const float gain = std::exp2(stops);
    std::vector<std::uint16_t> curve(65536);
    for (std::size_t i = 0; i < curve.size(); ++i) {
        const float linear = linearFromEncoded(static_cast<float>(i) / 65535.0F) * gain;
        curve[i] =
            static_cast<std::uint16_t>(std::lround(encodedFromLinear(std::min(1.0F, linear)) * 65535.0F));
    }
    Picture result = picture;
    for (auto& sample : result.samples) sample = curve[sample];
    return result;
}

Picture storedWith(const Picture& upright, int orientation) {
    assert(orientation >= 1 && orientation <= 8);
    if (orientation == 1) return upright;
    const bool turned = orientation >= 5;
    Picture stored{turned ? upright.height : upright.width, turned ? upright.width : upright.height};
    // For each orientation: is the upright x counted from the far side, is the upright y?
    const bool farX = orientation == 2 || orientation == 3 || orientation == 6 || orientation == 7;
    const bool farY = orientation == 3 || orientation == 4 || orientation == 7 || orientation == 8;
    for (int y = 0; y < stored.height; ++y) {
        for (int x = 0; x < stored.width; ++x) {
            const int alongX = turned ? y : x;
            const int alongY = turned ? x : y;
            const std::uint16_t* source = upright.at(farX ? upright.width - 1 - alongX : alongX,
                                                     farY ? upright.height - 1 - alongY : alongY);
            std::copy_n(source, 3, stored.at(x, y));
        }
    }
    return stored;
}

} // namespace kelvara::samplecard
