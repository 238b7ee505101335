#pragma once

#include "presets/PresetDrawing.h"
#include "presets/PresetRenderer.h"

#include <cmath>
#include <random>
#include <vector>

/// Pictures to draw, and their pixels as numbers from 0 to 1.
namespace kelvara::drawing {

inline double largest(const Bitmap& bitmap) { return bitmap.format() == PixelFormat::bgrx8 ? 255 : 65535; }

/// Channel `c` (blue, green, red), 0 to 1.
inline double value(const Bitmap& bitmap, int x, int y, int c) {
    const auto i = static_cast<std::size_t>(x * 4 + c);
    return (bitmap.format() == PixelFormat::bgrx8 ? bitmap.row(y)[i] : bitmap.row16(y)[i]) / largest(bitmap);
}

/// A picture whose pixels are `color(x, y, c)`.
template <typename Color>
BitmapPtr picture(PixelSize size, PixelFormat format, const ColorProfilePtr& profile, Color color) {
    std::shared_ptr<Bitmap> bitmap = Bitmap::create(size, profile, format);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            for (int c = 0; c < 4; ++c) {
                const auto i = static_cast<std::size_t>(x * 4 + c);
                const double number = c == 3 ? largest(*bitmap) : color(x, y, c) * largest(*bitmap);
                if (format == PixelFormat::bgrx8)
                    bitmap->row(y)[i] = static_cast<std::uint8_t>(std::lround(number));
                else
                    bitmap->row16(y)[i] = static_cast<std::uint16_t>(std::lround(number));
            }
        }
    }
    return bitmap;
}

/// Edges, gradients and noise, the same each time.
inline BitmapPtr mixedPicture(PixelSize size, PixelFormat format = PixelFormat::bgrx8,
                              const ColorProfilePtr& profile = ColorProfile::sRGB()) {
    std::mt19937 random{7};
    std::uniform_real_distribution<double> noise{0, 0.25};
    return picture(size, format, profile, [&](int x, int y, int c) {
        const double edge = (x / 37 + y / 23 + c) % 2 == 0 ? 0.55 : 0.05;
        return edge + 0.2 * x / size.width + noise(random);
    });
}

inline DevelopPreset preset(PresetSettings settings, double amount = 1) {
    DevelopPreset result;
    result.look = PresetLook{settings};
    result.amount = amount;
    return result;
}

/// All of the colour path at work.
inline PresetSettings strongColors() {
    return {{"Contrast2012", 45.0},
            {"Temperature", 4200.0},
            {"WhiteBalance", std::string{"Custom"}},
            {"Vibrance", 60.0},
            {"HueAdjustmentRed", 30.0},
            {"SaturationAdjustmentBlue", -60.0},
            {"ColorGradeShadowHue", 220.0},
            {"ColorGradeShadowSat", 50.0},
            {"Exposure2012", 0.4}};
}

} // namespace kelvara::drawing
