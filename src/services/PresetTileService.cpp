#include "services/PresetTileService.h"

#include "imaging/AreaScaler.h"
#include "presets/PresetRenderer.h"

#include <stop_token>
#include <utility>

namespace kelvara {

namespace {

std::string key(const FileURL& url, int longestSide, const PresetTileService::Preset& preset) {
    const auto revision = preset ? preset->revision : PresetRevision{};
    return std::to_string(longestSide) + '|' + std::to_string(revision.high) + '|' +
           std::to_string(revision.low) + '|' + url.path();
}

Task<BitmapPtr> draw(BitmapPtr thumbnail, int longestSide, PresetTileService::Preset preset,
                     std::stop_token stop) {
    if (stop.stop_requested()) co_return nullptr;
    auto small = scaledDown(std::move(thumbnail), longestSide);
    if (!preset) co_return small;
    co_return PresetRenderer::apply(*preset, std::move(small), Depth::eight, stop);
}

} // namespace

PresetTileService::PresetTileService(Executor& rendering, Executor& main)
    : m_main{main}, m_loader{cacheBytes, 0, rendering, rendering} {}

BitmapPtr PresetTileService::cached(const FileURL& url, int longestSide, const Preset& preset) const {
    return m_loader.cache().find(key(url, longestSide, preset));
}

ImageRequest PresetTileService::tile(const FileURL& url, int longestSide, const Preset& preset,
                                     BitmapPtr thumbnail, ImageCallback onMain) {
    auto work = [thumbnail = std::move(thumbnail), longestSide, preset](std::stop_token stop) {
        return draw(thumbnail, longestSide, preset, std::move(stop));
    };
    return ImageRequest::load(m_loader, key(url, longestSide, preset), ImageLoader::Priority::visible,
                              std::move(work), m_main, std::move(onMain));
}

} // namespace kelvara
