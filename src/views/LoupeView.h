#pragma once

#include "async/Executor.h"
#include "library/LibraryViewModel.h"
#include "presets/PresetStore.h"
#include "services/MetadataService.h"
#include "views/LoupePictures.h"
#include "views/PresetPreview.h"
#include "views/ThumbnailSources.h"
#include "views/ZoomableImageView.h"

#include <QWidget>

#include <utility>
#include <vector>

class QLabel;
class QStackedLayout;

namespace kelvara {

class EditStore;
class FilmstripView;
class LoupeInfoBar;
class LoupeVideoPlayer;
class PresetCaption;

/// The focused photo, large: the picture to zoom, through its edits and where the store wants that the active
/// preset, or the video to play; and an info bar, a filmstrip and what is said about the preset, which H
/// hides. Works only while it is visible; the window handles the keys.
class LoupeView : public QWidget {
    Q_OBJECT

public:
    /// `rendering` prepares large pictures for zooming; everything outlives it.
    LoupeView(LibraryViewModel& library, const ThumbnailSources& thumbnails, PreviewService& previews,
              MetadataService& metadata, PresetStore& presets, PresetRenderer& presetRenderer,
              Executor& rendering, Executor& main, QWidget* parent = nullptr);
    ~LoupeView() override;

    /// Whether the picture is still to come in full resolution, or a thumbnail of the filmstrip.
    [[nodiscard]] bool isLoading() const;
    /// The pictures in memory are no longer right, as when the screen's colours changed.
    void reloadPictures();
    /// Plays or pauses the video; nothing for a picture.
    void togglePlayback();
    /// Between the photo as preset and edits draw it and the photo before, until another photo, preset or
    /// edit comes. Nothing while there is nothing to compare.
    void toggleBefore();
    [[nodiscard]] bool showsBefore() const { return m_showsBefore; }
    [[nodiscard]] bool canShowBefore() const { return m_plain && previewedPreset(); }
    /// Which clipped areas of the picture are painted over.
    void showClipping(const Clipping& clipping) { m_image->showClipping(clipping); }
    /// The focused photo without preset and edits; null while there is no picture to be seen of it.
    [[nodiscard]] const PresetPreview::Picture& plainPicture() const { return m_plain; }

    [[nodiscard]] const ZoomableImageView& imageView() const { return *m_image; }
    [[nodiscard]] const LoupeInfoBar& infoBar() const { return *m_info; }
    [[nodiscard]] const LoupePictures& pictures() const { return m_pictures; }
    [[nodiscard]] const PresetPreview& preview() const { return m_preview; }

signals:
    /// What the image view shows, or what it could be compared with, may be another.
    void pictureShown();
    /// The menu of the focused photo is wanted at this point of the screen.
    void photoMenuRequested(const QPoint& screenPoint);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    struct DisplaySize {
        ZoomSize pixels;
        ZoomableImageView::SizeIs certainty = ZoomableImageView::SizeIs::unknown;
    };
    /// The size of the full picture that a thumbnail stands for. Photos of one camera mostly have one size,
    /// so the last one is a good guess where the shape is the same; then zoom and position carry over.
    [[nodiscard]] static DisplaySize likelySize(const QImage& thumbnail, const ZoomSize& last);

    void makeLayout(const ThumbnailSources& thumbnails);
    [[nodiscard]] QWidget* makeCannotPreview();
    void observe();
    void follow();
    void loadExposure(const PhotoItem* item);
    void showPicture();
    void display();
    void refreshInfo();
    void refreshOverlays();
    void showCannotPreviewSymbol();
    [[nodiscard]] bool showsVideo() const;
    /// The preset that a photo is shown through; null for none.
    [[nodiscard]] PresetStore::Preset chosenPreset() const;
    /// The same with the photo's edits.
    [[nodiscard]] PresetStore::Preset previewedPreset(const FileURL& photo) const;
    [[nodiscard]] PresetStore::Preset previewedPreset() const;

    LibraryViewModel& m_library;
    PresetStore& m_presets;
    EditStore& m_edits;
    ZoomableImageView* m_image = nullptr;
    LoupeVideoPlayer* m_video = nullptr;
    QWidget* m_cannotPreview = nullptr;
    QLabel* m_cannotPreviewSymbol = nullptr;
    QStackedLayout* m_stage = nullptr;
    LoupeInfoBar* m_info = nullptr;
    FilmstripView* m_filmstrip = nullptr;
    PresetCaption* m_caption = nullptr;
    PresetCaption* m_beforeBadge = nullptr;
    LoupePictures m_pictures;
    PresetPreview m_preview;
    PresetPreview::Picture m_plain; ///< The photo itself,
    DisplaySize m_size;             ///< and the size it is shown at.
    bool m_showsBefore = false;
    std::pair<FileURL, PresetRevision> m_compared; ///< The photo and preset that `m_showsBefore` is about.
    MetadataService& m_metadata;
    FileURL m_exposureURL; ///< The photo that `m_exposure` belongs to.
    QString m_exposure;
    MetadataRequest m_exposureRequest;
    std::vector<Subscription> m_subscriptions;
};

} // namespace kelvara
