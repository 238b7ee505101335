#include "samplecard/ColourProfiles.h"

#include <array>
#include <cstddef>
#include <lcms2.h>
#include <memory>
#include <stdexcept>

namespace kelvara::samplecard {
namespace {

struct Closer {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using ProfileHandle = std::unique_ptr<void, Closer>;

cmsToneCurve* curveOf(ColourProfile profile) {
    if (profile == ColourProfile::adobeRGB) return cmsBuildGamma(nullptr, 563.0 / 256);
    // IEC 61966-2-1, which Display P3 shares.
    const std::array<double, 5> parameters{2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    return cmsBuildParametricToneCurve(nullptr, 4, parameters.data());
}

cmsCIExyYTRIPLE primariesOf(ColourProfile profile) {
    switch (profile) {
    case ColourProfile::adobeRGB:
        return {{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}};
    case ColourProfile::displayP3:
        return {{0.68, 0.32, 1}, {0.265, 0.69, 1}, {0.15, 0.06, 1}};
    case ColourProfile::sRGB:
        break;
    }
    return {{0.64, 0.33, 1}, {0.30, 0.60, 1}, {0.15, 0.06, 1}};
}

const wchar_t* nameOf(ColourProfile profile) {
    switch (profile) {
    case ColourProfile::adobeRGB:
        return L"Wide RGB, gamma 2.2";
    case ColourProfile::displayP3:
        return L"Display P3";
    case ColourProfile::sRGB:
        break;
    }
    return L"sRGB";
}

ProfileHandle make(ColourProfile kind) {
    const cmsCIExyY d65{0.3127, 0.3290, 1};
    const cmsCIExyYTRIPLE primaries = primariesOf(kind);
    cmsToneCurve* curve = curveOf(kind);
    std::array<cmsToneCurve*, 3> curves{curve, curve, curve};
    ProfileHandle profile{cmsCreateRGBProfile(&d65, &primaries, curves.data())};
    cmsFreeToneCurve(curve);
    if (!profile) throw std::runtime_error("the colour profile could not be built");
    cmsMLU* name = cmsMLUalloc(nullptr, 1);
    cmsMLUsetWide(name, "en", "US", nameOf(kind));
    cmsWriteTag(profile.get(), cmsSigProfileDescriptionTag, name);
    cmsMLUfree(name);
    return profile;
}

} // namespace

std::string profileBytes(ColourProfile kind) {
    const ProfileHandle profile = make(kind);
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile.get(), nullptr, &size);
    std::string bytes(size, '\0');
    if (!cmsSaveProfileToMem(profile.get(), bytes.data(), &size))
        throw std::runtime_error("the colour profile could not be written");
    // The header's creation date is the only thing that changes from run to run.
    constexpr std::string_view fixedDate{"\x07\xE8\0\x05\0\x03\0\0\0\0\0\0", 12};
    bytes.replace(24, fixedDate.size(), fixedDate);
    return bytes;
}

std::vector<std::uint16_t> samplesIn(ColourProfile kind, const Picture& picture) {
    if (kind == ColourProfile::sRGB) return picture.samples;
    const ProfileHandle from = make(ColourProfile::sRGB);
    const ProfileHandle to = make(kind);
    cmsHTRANSFORM transform =
        cmsCreateTransform(from.get(), TYPE_RGB_16, to.get(), TYPE_RGB_16, INTENT_RELATIVE_COLORIMETRIC, 0);
    if (!transform) throw std::runtime_error("the colour transform could not be built");
    std::vector<std::uint16_t> samples(picture.samples.size());
    cmsDoTransform(transform, picture.samples.data(), samples.data(),
                   static_cast<cmsUInt32Number>(samples.size() / 3));
    cmsDeleteTransform(transform);
    return samples;
}

} // namespace kelvara::samplecard
