#include "imaging/MatrixTransform.h"

#include "imaging/MatrixProfile.h"

#include <algorithm>
#include <limits>

namespace kelvara {
namespace {

constexpr std::size_t numbers = 65536;
constexpr std::size_t steps = 65536; // of light; what lies between them is interpolated

} // namespace

std::unique_ptr<const MatrixTransform> MatrixTransform::make(const ColorProfile& source,
                                                             const ColorProfile& destination) {
    const auto from = MatrixProfile::of(source);
    const auto to = MatrixProfile::of(destination);
    if (!from || !to) return nullptr;
    std::unique_ptr<MatrixTransform> result{new MatrixTransform};
    const auto sample = [](const MatrixProfile::Function& of, std::size_t count, float scale) {
        std::vector<float> table(count);
        for (std::size_t n = 0; n < count; ++n)
            table[n] = scale * of(static_cast<float>(n) / static_cast<float>(count - 1));
        return table;
    };
    const auto matrix = from->lightTo(*to);
    for (std::size_t i = 0; i < 3; ++i) {
        result->m_light[i] = sample(from->light[i], numbers, steps - 1);
        result->m_numbers[i] = sample(to->numbers[i], steps, std::numeric_limits<std::uint16_t>::max());
        std::ranges::transform(matrix[i], result->m_matrix[i].begin(),
                               [](double value) { return static_cast<float>(value); });
    }
    return result;
}

template <typename Sample>
void MatrixTransform::convert(const std::uint16_t* from, Sample* to, std::size_t pixels) const {
    constexpr float scale = static_cast<float>(std::numeric_limits<Sample>::max()) / 65535.0F;
    constexpr float last = steps - 1, half = 0.5F; // which rounds, far faster than the library
    for (std::size_t i = 0; i < pixels; ++i, from += 4, to += 4) {
        const float blue = m_light[0][from[0]], green = m_light[1][from[1]], red = m_light[2][from[2]];
        for (std::size_t c = 0; c < 3; ++c) {
            const auto& row = m_matrix[c];
            const float light = std::clamp(row[0] * blue + row[1] * green + row[2] * red, 0.0F, last);
            const auto step = std::min(static_cast<std::size_t>(light), steps - 2);
            const auto* number = &m_numbers[c][step];
            const float value = number[0] + (number[1] - number[0]) * (light - static_cast<float>(step));
            to[c] = static_cast<Sample>(value * scale + half);
        }
    }
}

template void MatrixTransform::convert(const std::uint16_t*, std::uint8_t*, std::size_t) const;
template void MatrixTransform::convert(const std::uint16_t*, std::uint16_t*, std::size_t) const;

} // namespace kelvara
