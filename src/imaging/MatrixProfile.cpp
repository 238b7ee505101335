#include "imaging/MatrixProfile.h"

#include "imaging/Lcms.h"

#include <cmath>
#include <cstddef>
#include <utility>

namespace kelvara {
namespace {

using Matrix = MatrixProfile::Matrix;

/// From blue, green and red light to X, Y and Z. Empty when the profile doesn't say.
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

MatrixProfile::Function function(Curve owned) {
    return [curve = std::shared_ptr<const cmsToneCurve>{std::move(owned)}](float x) {
        return cmsEvalToneCurveFloat(curve.get(), x);
    };
}

} // namespace

std::optional<MatrixProfile> MatrixProfile::of(const ColorProfile& profile) {
    const auto handle = openProfile(profile);
    if (!handle || !cmsIsMatrixShaper(handle.get())) return std::nullopt;
    const auto toXYZ = colorants(handle.get());
    const auto fromXYZ = toXYZ ? inverse(*toXYZ) : std::nullopt;
    if (!fromXYZ) return std::nullopt;
    MatrixProfile result;
    result.toXYZ = *toXYZ;
    result.fromXYZ = *fromXYZ;
    constexpr std::array tags{cmsSigBlueTRCTag, cmsSigGreenTRCTag, cmsSigRedTRCTag};
    constexpr cmsUInt32Number steps = 16384; // of a reversed curve that isn't a formula
    for (std::size_t i = 0; i < 3; ++i) {
        const auto* curve = static_cast<const cmsToneCurve*>(cmsReadTag(handle.get(), tags[i]));
        Curve copy{curve ? cmsDupToneCurve(curve) : nullptr};
        Curve reversed{curve ? cmsReverseToneCurveEx(steps, curve) : nullptr};
        if (!copy || !reversed) return std::nullopt;
        result.light[i] = function(std::move(copy));
        result.numbers[i] = function(std::move(reversed));
    }
    return result;
}

Matrix MatrixProfile::lightTo(const MatrixProfile& other) const {
    Matrix result{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            for (std::size_t k = 0; k < 3; ++k) result[i][j] += other.fromXYZ[i][k] * toXYZ[k][j];
        }
    }
    return result;
}

} // namespace kelvara
