#pragma once

#include "async/PriorityLanes.h"
#include "async/ThreadPool.h"
#include "presets/PresetRenderer.h"
#include "services/MetadataService.h"
#include "services/PresetTileService.h"
#include "services/PreviewService.h"
#include "services/ThumbnailService.h"

namespace kelvara {

/// The services that read photos, with the threads they work on.
class ImageServices {
public:
    /// `main` outlives it; so does nobody who holds a request.
    explicit ImageServices(Executor& main);
    ~ImageServices();
    ImageServices(const ImageServices&) = delete;
    ImageServices& operator=(const ImageServices&) = delete;

    [[nodiscard]] ThumbnailService& thumbnails() { return m_thumbnails; }
    [[nodiscard]] PreviewService& previews() { return m_previews; }
    [[nodiscard]] MetadataService& metadata() { return m_metadata; }
    [[nodiscard]] PresetTileService& presetTiles() { return m_presetTiles; }
    /// Draws thumbnails, behind everything that `rendering` has to do.
    [[nodiscard]] PresetRenderer& thumbnailRenderer() { return m_thumbnailRenderer; }
    /// For preparing large pictures off the main thread.
    [[nodiscard]] Executor& rendering() { return m_renderingLanes.urgent(); }
    /// The files may be others from now on.
    void emptyCaches();
    /// Only the pictures: they are in the colours of another screen.
    void emptyPictureCaches();
    /// Halves them, forgetting first what was not used for longest.
    void shrinkCaches();

private:
    ThreadPool m_decoding;
    ThreadPool m_rendering;
    PriorityLanes m_lanes;          // into m_decoding
    PriorityLanes m_renderingLanes; // into m_rendering
    ImageExecutors m_executors;
    ThumbnailService m_thumbnails;
    PreviewService m_previews;
    MetadataService m_metadata;
    PresetTileService m_presetTiles;
    PresetRenderer m_thumbnailRenderer;
};

} // namespace kelvara
