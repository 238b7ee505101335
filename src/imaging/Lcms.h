#pragma once

#include "imaging/ColorProfile.h"

#include <lcms2.h>

#include <memory>

/// Owners of LittleCMS's objects; for the colour code's own sources only.
namespace kelvara {

struct CloseProfile {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using ProfileHandle = std::unique_ptr<void, CloseProfile>;

struct FreeCurve {
    void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
};
using Curve = std::unique_ptr<cmsToneCurve, FreeCurve>;

/// Null when the library can't read it.
[[nodiscard]] inline ProfileHandle openProfile(const ColorProfile& profile) {
    return ProfileHandle{
        cmsOpenProfileFromMem(profile.icc().data(), static_cast<cmsUInt32Number>(profile.icc().size()))};
}

} // namespace kelvara
