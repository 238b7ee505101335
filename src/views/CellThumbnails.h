#pragma once

#include "model/FileURL.h"
#include "model/LightAdjustments.h"
#include "model/Observable.h"
#include "services/ThumbnailService.h"
#include "views/ThumbnailSources.h"

#include <QImage>

#include <functional>
#include <unordered_map>
#include <vector>

namespace kelvara {

/// The thumbnails of the cells that are on screen, through the photos' edits: asks for what is missing, the
/// quick picture first where there is nothing to show yet, and withdraws what scrolled away.
///
/// Whatever is new, be it a better picture or other edits, is drawn while the picture before stays; one at a
/// time for a photo, so that a cell follows a slider however long each picture takes.
class CellThumbnails {
public:
    struct Thumbnail {
        QImage picture;
        bool isFinal = false; ///< Nothing better will come; without a picture there is none to be had.
    };

    /// `onChange` follows each change of a shown thumbnail, never during `show`.
    CellThumbnails(const ThumbnailSources& sources, std::function<void(const FileURL&)> onChange);

    /// Makes these the ones on screen, wanted in `pixelSize` on the longer side.
    void show(const std::vector<FileURL>& urls, int pixelSize);
    /// Asks again for everything: the pictures in memory are no longer right.
    void reload();
    /// Empty for one that is not on screen.
    [[nodiscard]] const Thumbnail& operator[](const FileURL& url) const;
    /// Whether the photo has edits that its thumbnail shows, be it on screen or not.
    [[nodiscard]] bool isEdited(const FileURL& url) const { return !editsOf(url).isEmpty(); }
    /// Whether a shown thumbnail is still to come.
    [[nodiscard]] bool isLoading() const;

private:
    struct Subject {
        BitmapPtr plain; ///< The best there is of the photo itself.
        LightAdjustments edits;
        friend bool operator==(const Subject&, const Subject&) = default;
    };
    struct Entry {
        Thumbnail thumbnail;
        Subject wanted;
        Subject drawn; ///< Or being drawn.
        int pixelSize = 0;
        ImageRequest quick;
        ImageRequest tier;
        ImageRequest drawing;
    };
    [[nodiscard]] LightAdjustments editsOf(const FileURL& url) const;
    void load(const FileURL& url, Entry& entry, int pixelSize);
    enum class Kind { quick, tier };
    void receive(const FileURL& url, const BitmapPtr& picture, Kind kind);
    void draw(const FileURL& url, Entry& entry);
    void receiveDrawn(const FileURL& url, const BitmapPtr& picture);
    void didEdit();

    ThumbnailSources m_sources;
    std::function<void(const FileURL&)> m_onChange;
    std::unordered_map<FileURL, Entry> m_entries;
    int m_pixelSize = 0;
    Subscription m_editSubscription;
};

} // namespace kelvara
