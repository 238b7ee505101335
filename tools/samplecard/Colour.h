#pragma once

#include <algorithm>
#include <cmath>

namespace kelvara::samplecard {

/// Light in linear sRGB primaries; 1 is the white of a sheet of paper in the scene, more is allowed.
struct Colour {
    float r = 0;
    float g = 0;
    float b = 0;

    friend Colour operator+(Colour one, Colour other) {
        return {one.r + other.r, one.g + other.g, one.b + other.b};
    }
    friend Colour operator-(Colour one, Colour other) {
        return {one.r - other.r, one.g - other.g, one.b - other.b};
    }
    friend Colour operator*(Colour one, Colour other) {
        return {one.r * other.r, one.g * other.g, one.b * other.b};
    }
    friend Colour operator*(Colour a, float k) { return {a.r * k, a.g * k, a.b * k}; }
    Colour& operator+=(Colour other) { return *this = *this + other; }
};

inline float mix(float a, float b, float t) { return a + (b - a) * t; }
inline Colour mix(Colour a, Colour b, float t) { return a + (b - a) * t; }
inline float clamp01(float v) { return std::min(1.0F, std::max(0.0F, v)); }
inline float squared(float v) { return v * v; }

/// 0 below `from`, 1 above `to`, smooth between them.
inline float smoothStep(float from, float to, float v) {
    const float t = clamp01((v - from) / (to - from));
    return t * t * (3 - 2 * t);
}

/// The sRGB transfer curve of IEC 61966-2-1, both ways, for 0 to 1.
inline float encodedFromLinear(float v) {
    return v <= 0.0031308F ? v * 12.92F : 1.055F * std::pow(v, 1 / 2.4F) - 0.055F;
}
inline float linearFromEncoded(float v) {
    return v <= 0.04045F ? v / 12.92F : std::pow((v + 0.055F) / 1.055F, 2.4F);
}

} // namespace kelvara::samplecard
