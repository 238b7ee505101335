#include "imaging/MatrixTransform.h"

#include "imaging/Lcms.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace kelvara {
namespace {

constexpr std::size_t numbers = 65536;
constexpr std::size_t steps = 65536; // of light; what lies between them is interpolated

using Matrix = std::array<std::array<double, 3>, 3>;

constexpr std::array curveTags{cmsSigBlueTRCTag, cmsSigGreenTRCTag, cmsSigRedTRCTag};

/// From blue, green and red light to X, Y and Z. Empty when it can't be inverted.
std::optional<Matrix> colorants(cmsHPROFILE profile) {
    constexpr std::array tags{cmsSigBlueColorantTag, cmsSigGreenColorantTag, cmsSigRedColorantTag};
    Matrix result{};
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const auto* color = static_cast<const cmsCIEXYZ*>(cmsReadTag(profile, tags[channel]));
        if (!color) return std::nullopt;
        result[0][channel] = color->X;
        result[1][channel] = color->Y;
        result[2][channel] = color->Z;
    }
    return result;
}

std::optional<Matrix> inverse(const Matrix& m) {
    Matrix result{};
    double determinant = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const auto i1 = (i + 1) % 3, i2 = (i + 2) % 3;
        for (std::size_t j = 0; j < 3; ++j) {
            const auto j1 = (j + 1) % 3, j2 = (j + 2) % 3;
            result[j][i] = m[i1][j1] * m[i2][j2] - m[i1][j2] * m[i2][j1];
        }
        determinant +=
            m[0][i] * (m[1][(i + 1) % 3] * m[2][(i + 2) % 3] - m[1][(i + 2) % 3] * m[2][(i + 1) % 3]);
    }
    constexpr double least = 1e-6;
    if (std::abs(determinant) < least) return std::nullopt;
    for (auto& row : result) {
        for (auto& value : row) value /= determinant;
    }
    return result;
}

} // namespace

std::unique_ptr<const MatrixTransform> MatrixTransform::make(const ColorProfile& source,
                                                             const ColorProfile& destination) {
    const auto from = openProfile(source);
    const auto to = openProfile(destination);
    if (!from || !to || !cmsIsMatrixShaper(from.get()) || !cmsIsMatrixShaper(to.get())) return nullptr;
    const auto toXYZ = colorants(from.get());
    const auto ofDestination = colorants(to.get());
    const auto fromXYZ = ofDestination ? inverse(*ofDestination) : std::nullopt;
    if (!toXYZ || !fromXYZ) return nullptr;
    std::unique_ptr<MatrixTransform> result{new MatrixTransform};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto* curve = static_cast<const cmsToneCurve*>(cmsReadTag(from.get(), curveTags[i]));
        const auto* given = static_cast<const cmsToneCurve*>(cmsReadTag(to.get(), curveTags[i]));
        const Curve reversed{given ? cmsReverseToneCurveEx(numbers / 4, given) : nullptr};
        if (!curve || !reversed) return nullptr;
        const auto sample = [](const cmsToneCurve* of, std::size_t count, float scale) {
            std::vector<float> table(count);
            for (std::size_t n = 0; n < count; ++n)
                table[n] =
                    scale * cmsEvalToneCurveFloat(of, static_cast<float>(n) / static_cast<float>(count - 1));
            return table;
        };
        result->m_light[i] = sample(curve, numbers, steps - 1);
        result->m_numbers[i] = sample(reversed.get(), steps, std::numeric_limits<std::uint16_t>::max());
        for (std::size_t j = 0; j < 3; ++j) {
            double sum = 0;
            for (std::size_t k = 0; k < 3; ++k) sum += (*fromXYZ)[i][k] * (*toXYZ)[k][j];
            result->m_matrix[i][j] = static_cast<float>(sum);
        }
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
