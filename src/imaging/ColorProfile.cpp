#include "imaging/ColorProfile.h"

#include "imaging/HighDynamicRange.h"
#include "imaging/Lcms.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>

namespace kelvara {
namespace {

/// IEC 61966-2-1.
Curve sRGBCurve() {
    const std::array<cmsFloat64Number, 5> parameters{2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    return Curve{cmsBuildParametricToneCurve(nullptr, 4, parameters.data())};
}

/// The profile as bytes, with the parts of the header that vary from run to run emptied.
std::vector<std::uint8_t> serialised(cmsHPROFILE profile) {
    cmsUInt32Number size = 0;
    if (!cmsSaveProfileToMem(profile, nullptr, &size)) return {};
    std::vector<std::uint8_t> icc(size);
    if (!cmsSaveProfileToMem(profile, icc.data(), &size)) return {};
    return icc;
}

std::vector<std::uint8_t> rgbProfile(const Primaries& primaries, cmsToneCurve* curve) {
    const auto chromaticity = [](Primaries::Point point) { return cmsCIExyY{point.x, point.y, 1}; };
    const auto white = chromaticity(primaries.white);
    const cmsCIExyYTRIPLE corners{chromaticity(primaries.red), chromaticity(primaries.green),
                                  chromaticity(primaries.blue)};
    std::array<cmsToneCurve*, 3> curves{curve, curve, curve};
    const ProfileHandle profile{curve ? cmsCreateRGBProfile(&white, &corners, curves.data()) : nullptr};
    return profile ? serialised(profile.get()) : std::vector<std::uint8_t>{};
}

constexpr Primaries::Point d65{0.3127, 0.3290};
constexpr Primaries displayP3Primaries{d65, {0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}};

/// By the code points of ITU-T H.273, table 2.
std::optional<Primaries> primariesOf(int code) {
    switch (code) {
    case 1: // ITU-R BT.709
    case 2: // not said
        return Primaries::sRGB;
    case 5: // ITU-R BT.601, 625 lines
        return Primaries{d65, {0.640, 0.330}, {0.290, 0.600}, {0.150, 0.060}};
    case 6: // ITU-R BT.601, 525 lines
    case 7: // SMPTE ST 240
        return Primaries{d65, {0.630, 0.340}, {0.310, 0.595}, {0.155, 0.070}};
    case 9: // ITU-R BT.2020 and BT.2100
        return Primaries{d65, {0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046}};
    case 11: // SMPTE RP 431-2
        return Primaries{
            {0.314, 0.351}, displayP3Primaries.red, displayP3Primaries.green, displayP3Primaries.blue};
    case 12: // SMPTE EG 432-1
        return displayP3Primaries;
    default:
        return std::nullopt;
    }
}

/// Enough steps for PQ, which packs all darkness into its first few.
Curve sampledCurve(double (*light)(double signal)) {
    constexpr std::size_t steps = 4096;
    std::vector<cmsUInt16Number> table(steps);
    for (std::size_t i = 0; i < steps; ++i)
        table[i] =
            static_cast<cmsUInt16Number>(std::lround(light(static_cast<double>(i) / (steps - 1)) * 65535));
    return Curve{cmsBuildTabulatedToneCurve16(nullptr, steps, table.data())};
}

/// By the code points of ITU-T H.273, table 3.
Curve transferOf(int code) {
    switch (code) {
    case 4:
        return Curve{cmsBuildGamma(nullptr, 2.2)};
    case 5:
        return Curve{cmsBuildGamma(nullptr, 2.8)};
    case 8:
        return Curve{cmsBuildGamma(nullptr, 1.0)};
    case 1: // BT.709 and its kin tell how cameras encode; pictures made so are meant for screens like
    case 2: // sRGB's. Not said.
    case 6:
    case 7:
    case 13: // IEC 61966-2-1
    case 14:
    case 15:
        return sRGBCurve();
    case 16:
        return sampledCurve(HighDynamicRange::screenLightOfPQ);
    case 18:
        return sampledCurve(HighDynamicRange::screenLightOfHLG);
    default:
        return nullptr;
    }
}

// The creation date of an ICC header.
constexpr std::size_t dateStart = 24, dateEnd = 36, headerSize = 128;

/// Whether an RGB profile is sRGB in all but name: cameras and programs write many variants of it.
bool describesSRGB(cmsHPROFILE profile) {
    // D50-adapted colorants, X Y Z of red, green and blue, and the tolerance of their published roundings.
    constexpr std::array<double, 9> expected{0.4361, 0.2225, 0.0139, 0.3851, 0.7169,
                                             0.0971, 0.1431, 0.0606, 0.7141};
    constexpr double colorantTolerance = 0.002;
    constexpr float curveTolerance = 0.003F;
    constexpr std::array colorants{cmsSigRedColorantTag, cmsSigGreenColorantTag, cmsSigBlueColorantTag};
    constexpr std::array curves{cmsSigRedTRCTag, cmsSigGreenTRCTag, cmsSigBlueTRCTag};
    if (cmsIsTag(profile, cmsSigAToB0Tag)) return false;
    const auto reference = sRGBCurve();
    for (std::size_t i = 0; i < colorants.size(); ++i) {
        const auto* colorant = static_cast<const cmsCIEXYZ*>(cmsReadTag(profile, colorants[i]));
        const auto* curve = static_cast<const cmsToneCurve*>(cmsReadTag(profile, curves[i]));
        if (!colorant || !curve) return false;
        const std::array values{colorant->X, colorant->Y, colorant->Z};
        for (std::size_t axis = 0; axis < values.size(); ++axis) {
            if (std::abs(values[axis] - expected[i * 3 + axis]) > colorantTolerance) return false;
        }
        for (int step = 0; step <= 16; ++step) {
            const float encoded = static_cast<float>(step) / 16;
            const float difference =
                cmsEvalToneCurveFloat(curve, encoded) - cmsEvalToneCurveFloat(reference.get(), encoded);
            if (std::abs(difference) > curveTolerance) return false;
        }
    }
    return true;
}

std::optional<ColorProfile::Model> usableModel(cmsHPROFILE profile) {
    const auto device = cmsGetDeviceClass(profile);
    if (device == cmsSigLinkClass || device == cmsSigNamedColorClass) return std::nullopt;
    switch (cmsGetColorSpace(profile)) {
    case cmsSigRgbData:
        return ColorProfile::Model::rgb;
    case cmsSigCmykData:
        return ColorProfile::Model::cmyk;
    default:
        return std::nullopt;
    }
}

} // namespace

const Primaries Primaries::sRGB{d65, {0.64, 0.33}, {0.30, 0.60}, {0.15, 0.06}};

ColorProfile::ColorProfile(std::vector<std::uint8_t> icc, Model model)
    : m_icc{std::move(icc)}, m_model{model} {
    // The date is a fact about the file, not about the colours.
    if (m_icc.size() >= headerSize)
        std::fill(m_icc.begin() + dateStart, m_icc.begin() + dateEnd, std::uint8_t{0});
    m_hash = std::hash<std::string_view>{}({reinterpret_cast<const char*>(m_icc.data()), m_icc.size()});
}

bool operator==(const ColorProfile& a, const ColorProfile& b) {
    return &a == &b || (a.m_hash == b.m_hash && a.m_icc == b.m_icc);
}

ColorProfilePtr ColorProfile::sRGB() {
    static const ColorProfilePtr profile{[] {
        return new ColorProfile{rgbProfile(Primaries::sRGB, sRGBCurve().get()), Model::rgb};
    }()};
    return profile;
}

ColorProfilePtr ColorProfile::displayP3() {
    static const ColorProfilePtr profile{[] {
        return new ColorProfile{rgbProfile(displayP3Primaries, sRGBCurve().get()), Model::rgb};
    }()};
    return profile;
}

ColorProfilePtr ColorProfile::adobeRGB() {
    static const ColorProfilePtr profile{[] {
        const Primaries primaries{d65, {0.64, 0.33}, {0.21, 0.71}, {0.15, 0.06}};
        const Curve gamma{cmsBuildGamma(nullptr, 563.0 / 256)};
        return new ColorProfile{rgbProfile(primaries, gamma.get()), Model::rgb};
    }()};
    return profile;
}

ColorProfilePtr ColorProfile::fromIcc(std::span<const std::uint8_t> icc) {
    constexpr std::size_t largest = std::size_t{8} << 20; // above any in use; what was converted from is kept
    if (icc.size() < headerSize || icc.size() > largest) return nullptr;
    const ProfileHandle profile{cmsOpenProfileFromMem(icc.data(), static_cast<cmsUInt32Number>(icc.size()))};
    if (!profile) return nullptr;
    if (cmsGetColorSpace(profile.get()) == cmsSigGrayData) {
        auto* curve = static_cast<cmsToneCurve*>(cmsReadTag(profile.get(), cmsSigGrayTRCTag));
        return fromIcc(rgbProfile(Primaries::sRGB, curve));
    }
    const auto model = usableModel(profile.get());
    if (!model) return nullptr;
    if (*model == Model::rgb && describesSRGB(profile.get())) return sRGB();
    return ColorProfilePtr{new ColorProfile{{icc.begin(), icc.end()}, *model}};
}

ColorProfilePtr ColorProfile::fromCodePoints(int primaries, int transfer) {
    const auto corners = primariesOf(primaries);
    const auto curve = transferOf(transfer);
    return corners && curve ? fromIcc(rgbProfile(*corners, curve.get())) : nullptr;
}

ColorProfilePtr ColorProfile::fromGamma(const Primaries& primaries, double gamma) {
    const Curve curve{cmsBuildGamma(nullptr, gamma)};
    return fromIcc(rgbProfile(primaries, curve.get()));
}

} // namespace kelvara
