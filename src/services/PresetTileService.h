#pragma once

#include "imaging/ImageLoader.h"
#include "imaging/ImageRequest.h"
#include "model/FileURL.h"
#include "presets/DevelopPreset.h"

#include <cstddef>
#include <memory>
#include <string>

namespace kelvara {

class CubeCache;

/// Small pictures of a photo through many presets, for choosing among them. Owned and called on the main
/// thread.
class PresetTileService {
public:
    /// Of the pictures drawn: some 1,400 tiles of usual size.
    static constexpr std::size_t cacheBytes = std::size_t{64} * 1024 * 1024;

    /// At full strength; null for the photo as shot.
    using Preset = std::shared_ptr<const DevelopPreset>;

    /// `rendering` is where tiles are drawn, in the order in which they are asked for. Both executors outlive
    /// it.
    PresetTileService(Executor& rendering, Executor& main);

    /// Null when it has to be drawn yet.
    [[nodiscard]] BitmapPtr cached(const FileURL& url, int longestSide, const Preset& preset) const;
    /// Scales `thumbnail`, which shows the photo at `url`, down to `longestSide` pixels and draws it.
    ImageRequest tile(const FileURL& url, int longestSide, const Preset& preset, BitmapPtr thumbnail,
                      ImageCallback onMain);

    /// The photos may be others from now on, or in the colours of another screen.
    void emptyCaches() { m_loader.forgetAll(); }
    /// Halves the pictures that are kept, forgetting first what was not used for longest.
    void shrinkCache();

private:
    Executor& m_main;
    std::shared_ptr<CubeCache> m_cubes; // most of a tile's time, and the same for every photo
    ImageLoader m_loader;
};

} // namespace kelvara
