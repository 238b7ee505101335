#pragma once

#include "services/PresetTileService.h"
#include "services/ThumbnailService.h"

#include <QImage>
#include <QSize>
#include <QTimer>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace kelvara {

/// The pictures of the preset tiles that are on screen, all of one photo: asks for what is missing in the
/// order of the tiles, and withdraws what scrolled away.
class PresetPictures {
public:
    using Preset = PresetTileService::Preset;
    struct Picture {
        QImage image;
        bool isOld = false;   ///< Of the photo before; goes soon.
        bool isFinal = false; ///< Without an image there is none to be had.
    };

    /// `onChange` follows each change of a shown picture, never during `show`.
    PresetPictures(ThumbnailService& thumbnails, PresetTileService& tiles, std::function<void()> onChange);

    /// Makes these the tiles on screen, of the photo at `url`, fitted into `pixels`. Without a photo they
    /// have no pictures. Null among the presets is the photo as shot.
    void show(const FileURL& url, const std::vector<Preset>& presets, const QSize& pixels);
    /// Asks again for everything: the pictures in memory are no longer right.
    void reload();
    /// Empty for one that is not on screen.
    [[nodiscard]] const Picture& operator[](const Preset& preset) const;
    /// Whether a picture is still to come.
    [[nodiscard]] bool isLoading() const;

private:
    struct Entry {
        Preset preset;
        Picture picture;
        ImageRequest request;
    };
    void changePhoto(const FileURL& url, const QSize& pixels);
    void loadThumbnail();
    void didLoadThumbnail(BitmapPtr thumbnail);
    void loadMissing();
    void receive(const std::string& id, const BitmapPtr& picture);
    void forgetOld();
    [[nodiscard]] int longestSide() const;

    ThumbnailService& m_thumbnails;
    PresetTileService& m_tiles;
    std::function<void()> m_onChange;
    FileURL m_url;
    QSize m_pixels;
    BitmapPtr m_thumbnail;
    ImageRequest m_thumbnailRequest;
    std::map<std::string, Entry> m_entries; // by the preset's id
    std::vector<std::string> m_order;
    QTimer m_patience;
};

} // namespace kelvara
