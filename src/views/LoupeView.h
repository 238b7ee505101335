#pragma once

#include "async/Executor.h"
#include "library/LibraryViewModel.h"
#include "services/MetadataService.h"
#include "views/LoupePictures.h"

#include <QWidget>

#include <vector>

class QLabel;
class QStackedLayout;

namespace kelvara {

class FilmstripView;
class LoupeInfoBar;
class LoupeVideoPlayer;
class ZoomableImageView;

/// The focused photo, large: the picture to zoom or the video to play, an info bar and a filmstrip, which H
/// hides. Works only while it is visible; the window handles the keys.
class LoupeView : public QWidget {
    Q_OBJECT

public:
    /// `rendering` prepares large pictures for zooming; everything outlives it.
    LoupeView(LibraryViewModel& library, ThumbnailService& thumbnails, PreviewService& previews,
              MetadataService& metadata, Executor& rendering, Executor& main, QWidget* parent = nullptr);
    ~LoupeView() override;

    /// Whether the picture is still to come in full resolution, or a thumbnail of the filmstrip.
    [[nodiscard]] bool isLoading() const;
    /// The pictures in memory are no longer right, as when the screen's colours changed.
    void reloadPictures();
    /// Plays or pauses the video; nothing for a picture.
    void togglePlayback();

    [[nodiscard]] const ZoomableImageView& imageView() const { return *m_image; }
    [[nodiscard]] const LoupeInfoBar& infoBar() const { return *m_info; }
    [[nodiscard]] const LoupePictures& pictures() const { return m_pictures; }

signals:
    /// The menu of the focused photo is wanted at this point of the screen.
    void photoMenuRequested(const QPoint& screenPoint);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void makeLayout(ThumbnailService& thumbnails);
    [[nodiscard]] QWidget* makeCannotPreview();
    void observeLibrary();
    void follow();
    void loadExposure(const PhotoItem* item);
    void showPicture();
    void refreshInfo();
    void refreshOverlays();
    void showCannotPreviewSymbol();
    [[nodiscard]] bool showsVideo() const;

    LibraryViewModel& m_library;
    ZoomableImageView* m_image = nullptr;
    LoupeVideoPlayer* m_video = nullptr;
    QWidget* m_cannotPreview = nullptr;
    QLabel* m_cannotPreviewSymbol = nullptr;
    QStackedLayout* m_stage = nullptr;
    LoupeInfoBar* m_info = nullptr;
    FilmstripView* m_filmstrip = nullptr;
    LoupePictures m_pictures;
    MetadataService& m_metadata;
    FileURL m_exposureURL; ///< The photo that `m_exposure` belongs to.
    QString m_exposure;
    MetadataRequest m_exposureRequest;
    std::vector<Subscription> m_subscriptions;
};

} // namespace kelvara
