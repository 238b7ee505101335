#pragma once

#include "model/FileURL.h"
#include "services/ThumbnailService.h"

#include <QImage>

#include <functional>
#include <unordered_map>
#include <vector>

namespace kelvara {

/// The thumbnails of the cells that are on screen: asks for what is missing, the quick picture first where
/// there is nothing to show yet, and withdraws what scrolled away.
class CellThumbnails {
public:
    struct Thumbnail {
        QImage picture;
        bool isFinal = false; ///< Nothing better will come; without a picture there is none to be had.
    };

    /// `onChange` follows each change of a shown thumbnail, never during `show`.
    CellThumbnails(ThumbnailService& service, std::function<void(const FileURL&)> onChange);

    /// Makes these the ones on screen, wanted in `pixelSize` on the longer side.
    void show(const std::vector<FileURL>& urls, int pixelSize);
    /// Asks again for everything: the pictures in memory are no longer right.
    void reload();
    /// Empty for one that is not on screen.
    [[nodiscard]] const Thumbnail& operator[](const FileURL& url) const;
    /// Whether a shown thumbnail is still to come.
    [[nodiscard]] bool isLoading() const;

private:
    struct Entry {
        Thumbnail thumbnail;
        int pixelSize = 0;
        bool awaitsQuick = false;
        bool awaitsTier = false;
        ImageRequest quick;
        ImageRequest tier;
    };
    void load(const FileURL& url, Entry& entry, int pixelSize);
    enum class Kind { quick, tier };
    void receive(const FileURL& url, const BitmapPtr& picture, Kind kind);

    ThumbnailService& m_service;
    std::function<void(const FileURL&)> m_onChange;
    std::unordered_map<FileURL, Entry> m_entries;
    int m_pixelSize = 0;
};

} // namespace kelvara
