#include "services/PresetTileService.h"

#include "imaging/PictureScaler.h"
#include "presets/ColorCube.h"
#include "presets/PresetDrawing.h"

#include <stop_token>
#include <utility>

namespace kelvara {

namespace {

std::string key(const FileURL& url, int longestSide, const PresetTileService::Preset& preset) {
    const auto revision = preset ? preset->revision : PresetRevision{};
    return std::to_string(longestSide) + '|' + std::to_string(revision.high) + '|' +
           std::to_string(revision.low) + '|' + url.path();
}

Task<BitmapPtr> draw(std::shared_ptr<CubeCache> cubes, BitmapPtr thumbnail, int longestSide,
                     PresetTileService::Preset preset, std::stop_token stop) {
    if (stop.stop_requested()) co_return BitmapPtr{};
    auto small = scaledDown(std::move(thumbnail), longestSide);
    if (!small || !preset || changesNothing(*preset)) co_return small;
    const auto cube = cubes->cube(*preset);
    co_return drawn(*preset, *cube, *small, Depth::eight, stop);
}

} // namespace

PresetTileService::PresetTileService(Executor& rendering, Executor& main)
    : m_main{main}, m_cubes{std::make_shared<CubeCache>()}, m_loader{cacheBytes, 0, rendering, rendering} {}

BitmapPtr PresetTileService::cached(const FileURL& url, int longestSide, const Preset& preset) const {
    return m_loader.cache().find(key(url, longestSide, preset));
}

void PresetTileService::shrinkCache() {
    m_loader.cache().shrink();
    m_cubes->clear();
}

ImageRequest PresetTileService::tile(const FileURL& url, int longestSide, const Preset& preset,
                                     BitmapPtr thumbnail, ImageCallback onMain) {
    auto work = [cubes = m_cubes, thumbnail = std::move(thumbnail), longestSide,
                 preset](std::stop_token stop) {
        return draw(cubes, thumbnail, longestSide, preset, std::move(stop));
    };
    return ImageRequest::load(m_loader, key(url, longestSide, preset), ImageLoader::Priority::visible,
                              std::move(work), m_main, std::move(onMain));
}

} // namespace kelvara
