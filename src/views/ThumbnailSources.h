#pragma once

namespace kelvara {

class EditStore;
class PresetRenderer;
class ThumbnailService;

/// Where the thumbnails of photos come from. All outlive who is given them.
struct ThumbnailSources {
    ThumbnailService& service;
    EditStore& edits;
    PresetRenderer& renderer; ///< Draws those of edited photos when nothing larger is to be drawn.
};

} // namespace kelvara
