#pragma once

#include "samplecard/Picture.h"

#include <cstdint>

namespace kelvara::samplecard {

// One painter for each scene; `paint` chooses among them.
Picture paintMountains(int width, int height, std::uint32_t seed);
Picture paintLake(int width, int height, std::uint32_t seed);
Picture paintHills(int width, int height, std::uint32_t seed);
Picture paintDunes(int width, int height, std::uint32_t seed);
Picture paintSea(int width, int height, std::uint32_t seed);
Picture paintForest(int width, int height, std::uint32_t seed);
Picture paintCity(int width, int height, std::uint32_t seed);
Picture paintFlower(int width, int height, std::uint32_t seed);
Picture paintStars(int width, int height, std::uint32_t seed);
Picture paintStillLife(int width, int height, std::uint32_t seed);
Picture paintSilhouette(int width, int height, std::uint32_t seed);

} // namespace kelvara::samplecard
