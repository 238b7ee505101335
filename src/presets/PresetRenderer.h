#pragma once

#include "imaging/ImageLoader.h"
#include "imaging/ImageRequest.h"
#include "model/FileURL.h"
#include "presets/DevelopPreset.h"

#include <cstddef>
#include <memory>
#include <stop_token>
#include <string>
#include <unordered_map>

namespace kelvara {

class CubeCache;

/// Draws photos through develop presets. Owned and called on the main thread, apart from `apply`, which is
/// for any.
class PresetRenderer {
public:
    /// Two or three pictures in full resolution.
    static constexpr std::size_t usualCacheBytes = std::size_t{384} * 1024 * 1024;

    /// `rendering` is where pictures are drawn, each on up to four cores. Both executors outlive it. Of the
    /// pictures drawn the last used ones are kept, up to `cacheBytes`.
    PresetRenderer(Executor& rendering, Executor& main, std::size_t cacheBytes = usualCacheBytes);
    ~PresetRenderer();
    PresetRenderer(const PresetRenderer&) = delete;
    PresetRenderer& operator=(const PresetRenderer&) = delete;

    /// The picture as the preset draws it, of the same size and colour space, with 8 or 16 bits a channel;
    /// `bitmap` itself when the preset changes nothing. Null for null, when memory is short or `stop` was
    /// requested. Who moves the only reference in, which no other thread ever held, gets the same bitmap
    /// drawn over where it fits. Blocks; any thread.
    [[nodiscard]] static BitmapPtr apply(const DevelopPreset& preset, BitmapPtr bitmap, Depth depth,
                                         const std::stop_token& stop);

    /// What `render` has drawn of `image`, which shows the photo at `url`; null when it has to be drawn yet.
    /// `image` itself when the preset changes nothing.
    [[nodiscard]] BitmapPtr cached(const DevelopPreset& preset, const FileURL& url,
                                   const BitmapPtr& image) const;

    /// Draws `image`, which shows the photo at `url`, with 8 bits a channel, and keeps the result. Of a
    /// preset's revisions only the newest is drawn and kept for a photo in one size: who waits for an older
    /// one gets null. `image` isn't null.
    ImageRequest render(const DevelopPreset& preset, const FileURL& url, BitmapPtr image,
                        ImageCallback onMain);

    /// The photos may be others from now on, or in the colours of another screen.
    void emptyCaches();
    /// Halves what is kept, forgetting first what was not used for longest.
    void shrinkCache();

private:
    [[nodiscard]] ImageLoader::Work work(const DevelopPreset& preset, BitmapPtr image) const;

    Executor& m_main;
    std::shared_ptr<CubeCache> m_cubes; // drawings that still run keep it
    /// By photo, size and preset the key of the newest revision asked for.
    std::unordered_map<std::string, std::string> m_latestKeys;
    ImageLoader m_loader;
};

} // namespace kelvara
