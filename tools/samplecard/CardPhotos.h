#pragma once

#include "samplecard/CardFile.h"
#include "samplecard/Scene.h"
#include "samplecard/Shot.h"

#include <cstdint>
#include <vector>

namespace kelvara::samplecard {

/// Exposure, lens and sensitivity as a photographer would have chosen them for the scene.
Shot plausibleShot(Scene scene, std::uint32_t seed, std::int64_t time);

/// The photos of three days: most in DCIM/100KELVA and DCIM/101KELVA. `scale` shrinks their sides.
std::vector<CardJob> photoJobs(double scale);

} // namespace kelvara::samplecard
