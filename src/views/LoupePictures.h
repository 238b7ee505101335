#pragma once

#include "async/LatestOnly.h"
#include "library/LibraryViewModel.h"
#include "services/PreviewService.h"
#include "services/ThumbnailService.h"
#include "views/ImagePyramid.h"

#include <functional>
#include <memory>

namespace kelvara {

/// Brings the pictures of the photo in the loupe in the order in which they can be had: what is in memory at
/// once, the small picture stored in the file, a thumbnail, the full picture; and then those of its
/// neighbours. Main thread.
///
/// What it shows always belongs to the photo that was asked for last.
class LoupePictures {
public:
    struct Shown {
        FileURL url; ///< Empty for no photo.
        std::shared_ptr<const ImagePyramid> image;
        bool isFullResolution = false;
        bool isLoading = false;    ///< A better picture is still to come.
        bool isUnreadable = false; ///< No picture could be made.
    };

    /// `rendering` halves large pictures; both executors and everything else outlive it. `onChange` follows
    /// each change of `shown()`, never during `load`.
    LoupePictures(LibraryViewModel& library, ThumbnailService& thumbnails, PreviewService& previews,
                  Executor& rendering, Executor& main, std::function<void()> onChange);

    /// Turns to another photo, and withdraws all that was asked for the one before. Nothing while it is the
    /// same.
    void load(const PhotoItem* item);
    /// The same photo again, from the start.
    void reload();
    [[nodiscard]] const Shown& shown() const { return m_shown; }

private:
    void begin();
    void showThumbnail(const BitmapPtr& bitmap);
    void receiveQuick(const BitmapPtr& bitmap);
    void receiveThumbnail(const BitmapPtr& bitmap);
    void requestFull();
    void receiveFull(const BitmapPtr& bitmap);
    void prefetchThumbnails();
    void prefetchFull();
    void end();

    LibraryViewModel& m_library;
    ThumbnailService& m_thumbnails;
    PreviewService& m_previews;
    std::function<void()> m_onChange;
    Shown m_shown;
    PhotoItem m_item;
    ImageRequest m_quickRequest;
    ImageRequest m_thumbnailRequest;
    ImageRequest m_fullRequest;
    LatestOnly m_halving;
};

} // namespace kelvara
