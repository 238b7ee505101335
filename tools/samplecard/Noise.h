#pragma once

#include <cstdint>

namespace kelvara::samplecard {

/// Deterministic on every machine, which the distributions of the standard library are not.
class Random {
public:
    explicit Random(std::uint64_t seed);
    std::uint32_t next();
    /// Evenly spread over [from, to).
    float uniform(float from = 0, float to = 1);
    /// One of `from` ... `to`, both included.
    int integer(int from, int to);
    bool chance(float probability) { return uniform() < probability; }

private:
    std::uint64_t m_state;
};

/// Scrambles a lattice position; every bit depends on all of the input.
std::uint32_t hashOf(int x, int y, std::uint32_t seed);

/// `hashOf` as a number in [0, 1).
float hash01(int x, int y, std::uint32_t seed);

/// Smooth random field over the plane: lattice values in [-1, 1], one cell a unit, repeating after 256 units.
/// Each seed is another field. Cheap enough for several octaves a pixel.
class Noise {
public:
    explicit Noise(std::uint32_t seed);

    [[nodiscard]] float at(float x, float y) const;
    /// With the slopes along both axes.
    [[nodiscard]] float at(float x, float y, float& slopeX, float& slopeY) const;
    /// Octaves, each half as strong and turned against the last so that the lattice does not show; about [-1,
    /// 1].
    [[nodiscard]] float fractal(float x, float y, int octaves) const;
    /// Sharp crests: 1 on the creases, falling off to 0.
    [[nodiscard]] float ridged(float x, float y, int octaves) const;

    static constexpr int period = 256;
    /// One column and row more than the period, so that the right and lower neighbour needs no wrapping.
    static constexpr int stride = period + 1;

private:
    static int wholeOf(float v) {
        const int truncated = static_cast<int>(v);
        return truncated - (v < static_cast<float>(truncated) ? 1 : 0);
    }

    const float* m_lattice; // shared by all
    float m_offsetX = 0;
    float m_offsetY = 0;
};

inline float Noise::at(float x, float y) const {
    x += m_offsetX;
    y += m_offsetY;
    const int column = wholeOf(x);
    const int row = wholeOf(y);
    const float fx = x - static_cast<float>(column);
    const float fy = y - static_cast<float>(row);
    const float* corner = m_lattice + (row & (period - 1)) * stride + (column & (period - 1));
    const float u = fx * fx * (3 - 2 * fx);
    const float v = fy * fy * (3 - 2 * fy);
    const float upper = corner[0] + (corner[1] - corner[0]) * u;
    const float lower = corner[stride] + (corner[stride + 1] - corner[stride]) * u;
    return upper + (lower - upper) * v;
}

inline float Noise::at(float x, float y, float& slopeX, float& slopeY) const {
    x += m_offsetX;
    y += m_offsetY;
    const int column = wholeOf(x);
    const int row = wholeOf(y);
    const float fx = x - static_cast<float>(column);
    const float fy = y - static_cast<float>(row);
    const float* corner = m_lattice + (row & (period - 1)) * stride + (column & (period - 1));
    const float u = fx * fx * fx * (fx * (fx * 6 - 15) + 10);
    const float v = fy * fy * fy * (fy * (fy * 6 - 15) + 10);
    const float du = 30 * fx * fx * (fx * (fx - 2) + 1);
    const float dv = 30 * fy * fy * (fy * (fy - 2) + 1);
    const float alongX = corner[1] - corner[0];
    const float alongY = corner[stride] - corner[0];
    const float twist = corner[0] - corner[1] - corner[stride] + corner[stride + 1];
    slopeX = du * (alongX + twist * v);
    slopeY = dv * (alongY + twist * u);
    return corner[0] + alongX * u + alongY * v + twist * u * v;
}

} // namespace kelvara::samplecard
