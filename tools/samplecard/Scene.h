#pragma once

#include "samplecard/Picture.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace kelvara::samplecard {

enum class Scene { mountains, lake, hills, dunes, sea, forest, city, flower, stars, stillLife, silhouette };

inline constexpr std::array allScenes{Scene::mountains, Scene::lake,      Scene::hills,     Scene::dunes,
                                      Scene::sea,       Scene::forest,    Scene::city,      Scene::flower,
                                      Scene::stars,     Scene::stillLife, Scene::silhouette};

std::string_view name(Scene scene);

/// An invented photograph, upright, in its full resolution. The same seed gives the same view at any size;
/// another seed another place, light and composition. Runs on the calling thread.
Picture paint(Scene scene, int width, int height, std::uint32_t seed);

} // namespace kelvara::samplecard
