#include "samplecard/Noise.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace kelvara::samplecard {
namespace {

constexpr int period = Noise::period;
constexpr int stride = Noise::stride;
using Lattice = std::array<float, static_cast<std::size_t>(stride) * stride>;

const Lattice& lattice() {
    static const Lattice values = [] {
        Lattice filled{};
        for (int y = 0; y < stride; ++y)
            for (int x = 0; x < stride; ++x)
                filled[static_cast<std::size_t>(y * stride + x)] = hash01(x % period, y % period, 77) * 2 - 1;
        return filled;
    }();
    return values;
}

// Turns by an angle that shares no small multiple with a quarter turn, and doubles.
constexpr float turnedCosine = 1.6F;
constexpr float turnedSine = 1.2F;

std::uint64_t scrambled(std::uint64_t v) {
    v = (v ^ (v >> 30)) * 0xBF58476D1CE4E5B9ULL;
    v = (v ^ (v >> 27)) * 0x94D049BB133111EBULL;
    return v ^ (v >> 31);
}

} // namespace

// Neighbouring seeds must not give the same numbers one step apart.
Random::Random(std::uint64_t seed) : m_state{scrambled(seed * 0xD1342543DE82EF95ULL + 0x1234567)} {}

std::uint32_t Random::next() {
    m_state += 0x9E3779B97F4A7C15ULL;
    return static_cast<std::uint32_t>(scrambled(m_state) >> 32);
}

float Random::uniform(float from, float to) {
    return from + (to - from) * static_cast<float>(next() >> 8) * 0x1p-24F;
}

int Random::integer(int from, int to) {
    return from + static_cast<int>(next() % static_cast<std::uint32_t>(to - from + 1));
}

std::uint32_t hashOf(int x, int y, std::uint32_t seed) {
    std::uint32_t h = static_cast<std::uint32_t>(x) * 0x9E3779B1U ^
                      static_cast<std::uint32_t>(y) * 0x85EBCA77U ^ seed * 0xC2B2AE3DU;
    h ^= h >> 16;
    h *= 0x7FEB352DU;
    h ^= h >> 15;
    h *= 0x846CA68BU;
    return h ^ (h >> 16);
}

float hash01(int x, int y, std::uint32_t seed) {
    return static_cast<float>(hashOf(x, y, seed) >> 8) * 0x1p-24F;
}

Noise::Noise(std::uint32_t seed)
    : m_lattice{lattice().data()}, m_offsetX{hash01(1, 2, seed) * period}, m_offsetY{hash01(3, 4, seed) *
                                                                                     period} {}

float Noise::fractal(float x, float y, int octaves) const {
    float sum = 0;
    float strength = 0.5F;
    for (int i = 0; i < octaves; ++i) {
        sum += strength * at(x, y);
        strength *= 0.5F;
        const float turned = turnedCosine * x - turnedSine * y;
        y = turnedSine * x + turnedCosine * y;
        x = turned;
    }
    return sum;
}

float Noise::ridged(float x, float y, int octaves) const {
    float sum = 0;
    float strength = 0.5F;
    for (int i = 0; i < octaves; ++i) {
        const float crest = 1 - std::fabs(at(x, y));
        sum += strength * crest * crest;
        strength *= 0.5F;
        const float turned = turnedCosine * x - turnedSine * y;
        y = turnedSine * x + turnedCosine * y;
        x = turned;
    }
    return sum;
}

} // namespace kelvara::samplecard
