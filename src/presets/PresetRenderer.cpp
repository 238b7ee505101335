#include "presets/PresetRenderer.h"

#include "presets/ColorCube.h"
#include "presets/PresetDrawing.h"

#include <fmt/format.h>
#include <utility>

namespace kelvara {
namespace {

/// Bounds what is remembered of photos whose pictures are long forgotten.
constexpr std::size_t mostSlots = 1024;

/// A photo in one size and space, as drawn by any revision of a preset.
std::string slotOf(const DevelopPreset& preset, const FileURL& url, const Bitmap& image) {
    return fmt::format("{}|{}|{}x{}|{:x}|{}", preset.id, url.path(), image.width(), image.height(),
                       image.profile() ? image.profile()->hash() : 0, static_cast<int>(image.format()));
}

std::string keyOf(const std::string& slot, PresetRevision revision) {
    return fmt::format("{:016x}{:016x}|{}", revision.high, revision.low, slot);
}

Task<BitmapPtr> draw(std::shared_ptr<CubeCache> cubes, DevelopPreset preset, BitmapPtr image,
                     std::stop_token stop) {
    if (stop.stop_requested()) co_return BitmapPtr{};
    if (changesNothing(preset)) co_return image;
    const auto cube = cubes->cube(preset);
    co_return drawn(preset, *cube, *image, Depth::eight, stop);
}

} // namespace

PresetRenderer::PresetRenderer(Executor& rendering, Executor& main, std::size_t cacheBytes)
    : m_main{main}, m_cubes{std::make_shared<CubeCache>()}, m_loader{cacheBytes, 0, rendering, rendering} {}

PresetRenderer::~PresetRenderer() = default;

BitmapPtr PresetRenderer::apply(const DevelopPreset& preset, BitmapPtr bitmap, Depth depth,
                                const std::stop_token& stop) {
    if (!bitmap || stop.stop_requested()) return nullptr;
    if (changesNothing(preset)) return bitmap;
    return redrawn(preset, ColorCube{preset}, std::move(bitmap), depth, stop);
}

BitmapPtr PresetRenderer::cached(const DevelopPreset& preset, const FileURL& url,
                                 const BitmapPtr& image) const {
    if (!image || changesNothing(preset)) return image;
    return m_loader.cache().find(keyOf(slotOf(preset, url, *image), preset.revision));
}

ImageRequest PresetRenderer::render(const DevelopPreset& preset, const FileURL& url, BitmapPtr image,
                                    ImageCallback onMain) {
    const auto slot = slotOf(preset, url, *image);
    auto key = keyOf(slot, preset.revision);
    if (m_latestKeys.size() >= mostSlots) m_latestKeys.clear();
    auto& latest = m_latestKeys[slot];
    if (!latest.empty() && latest != key) m_loader.drop(latest);
    latest = key;
    return ImageRequest::load(m_loader, std::move(key), ImageLoader::Priority::visible,
                              work(preset, std::move(image)), m_main, std::move(onMain));
}

void PresetRenderer::emptyCaches() {
    m_loader.forgetAll();
    m_cubes->clear();
    m_latestKeys.clear();
}

void PresetRenderer::shrinkCache() { m_loader.cache().shrink(); }

ImageLoader::Work PresetRenderer::work(const DevelopPreset& preset, BitmapPtr image) const {
    return [cubes = m_cubes, preset, image = std::move(image)](std::stop_token stop) {
        return draw(cubes, preset, image, std::move(stop));
    };
}

} // namespace kelvara
