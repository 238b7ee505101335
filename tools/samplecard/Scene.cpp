#include "samplecard/Scene.h"

#include "samplecard/scenes/Scenes.h"

namespace kelvara::samplecard {

std::string_view name(Scene scene) {
    switch (scene) {
    case Scene::mountains:
        return "mountains";
    case Scene::lake:
        return "lake";
    case Scene::hills:
        return "hills";
    case Scene::dunes:
        return "dunes";
    case Scene::sea:
        return "sea";
    case Scene::forest:
        return "forest";
    case Scene::city:
        return "city";
    case Scene::flower:
        return "flower";
    case Scene::stars:
        return "stars";
    case Scene::stillLife:
        return "still life";
    case Scene::silhouette:
        return "silhouette";
    }
    return {};
}

Picture paint(Scene scene, int width, int height, std::uint32_t seed) {
    switch (scene) {
    case Scene::mountains:
        return paintMountains(width, height, seed);
    case Scene::lake:
        return paintLake(width, height, seed);
    case Scene::hills:
        return paintHills(width, height, seed);
    case Scene::dunes:
        return paintDunes(width, height, seed);
    case Scene::sea:
        return paintSea(width, height, seed);
    case Scene::forest:
        return paintForest(width, height, seed);
    case Scene::city:
        return paintCity(width, height, seed);
    case Scene::flower:
        return paintFlower(width, height, seed);
    case Scene::stars:
        return paintStars(width, height, seed);
    case Scene::stillLife:
        return paintStillLife(width, height, seed);
    case Scene::silhouette:
        return paintSilhouette(width, height, seed);
    }
    return {};
}

} // namespace kelvara::samplecard
