#pragma once

#include "async/LatestOnly.h"
#include "library/LibraryViewModel.h"
#include "presets/PresetRenderer.h"
#include "services/ThumbnailService.h"
#include "views/ImagePyramid.h"

#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace kelvara {

/// Draws the photo in the loupe through a preset and its edits: at once in the size that the view shows, at
/// most `liveSide`, so that going from preset to preset and moving a slider is fluent; and when nothing has
/// changed for a moment, in as many pixels as the view shows, and the thumbnails of the neighbours ahead.
/// Main thread.
///
/// Changes that come faster than they are drawn neither queue up nor starve: what is being drawn is shown,
/// and then the newest is drawn.
///
/// Holds one drawn picture with its halvings, of the photo and mostly of the preset wanted last; others are
/// the renderer's to keep.
class PresetPreview {
public:
    using Picture = std::shared_ptr<const ImagePyramid>;
    using Preset = std::shared_ptr<const DevelopPreset>;

    static constexpr int liveSide = 2048; ///< Pixels on the longer side.
    static constexpr std::chrono::milliseconds rest{120};

    struct Subject {
        FileURL url;
        Picture plain; ///< Of this photo; null while there is none.
        Preset preset; ///< With the photo's edits; null for neither.
        int level = 0; ///< Of `plain`, that the view shows.
    };

    /// `rendering` halves large pictures; everything handed in outlives it. `presetOf` gives what a photo is
    /// drawn through, null for nothing. `onChange` follows each change of `picture()` and `isRefining()`,
    /// never during `show`.
    PresetPreview(LibraryViewModel& library, ThumbnailService& thumbnails, PresetRenderer& renderer,
                  Executor& rendering, Executor& main, std::function<Preset(const FileURL&)> presetOf,
                  std::function<void()> onChange);

    /// What is wanted from now on; all that was asked for another photo or preset is withdrawn.
    void show(Subject subject);
    /// The photo as drawn, of fewer pixels than it will have or for a moment through the preset before; null
    /// where only the plain picture can be shown.
    [[nodiscard]] const Picture& picture() const { return m_drawn; }
    [[nodiscard]] bool isLoading() const;
    /// Whether the view shows more pixels than are drawn at once, and they are still to come.
    [[nodiscard]] bool isRefining() const;

private:
    [[nodiscard]] int liveLevel() const;
    [[nodiscard]] bool isDrawn(int level) const;
    [[nodiscard]] bool isCurrent(PresetRevision revision) const;
    [[nodiscard]] bool takeCached(int level);
    [[nodiscard]] ImageRequest draw(int level);
    void drawLive();
    void receive(const BitmapPtr& bitmap, int level, PresetRevision revision);
    void withdraw(bool keepsLive);
    void take(const BitmapPtr& bitmap, PresetRevision revision);
    void refine();
    void drawAhead();

    LibraryViewModel& m_library;
    ThumbnailService& m_thumbnails;
    PresetRenderer& m_renderer;
    std::function<Preset(const FileURL&)> m_presetOf;
    std::function<void()> m_onChange;
    Subject m_subject;
    Picture m_drawn;
    PresetRevision m_drawnRevision;
    ImageRequest m_live;
    ImageRequest m_fine;
    std::vector<ImageRequest> m_ahead;
    LatestOnly m_halving;
    bool m_isHalving = false;
    QTimer m_rest;
};

} // namespace kelvara
