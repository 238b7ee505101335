#include "views/LoupeView.h"

#include "presets/EditStore.h"
#include "views/Controls.h"
#include "views/FilmstripView.h"
#include "views/LoupeInfoBar.h"
#include "views/LoupeVideoPlayer.h"
#include "views/PresetCaption.h"
#include "views/Symbols.h"
#include "views/Text.h"
#include "views/ThumbnailCell.h"

#include <QContextMenuEvent>
#include <QEvent>
#include <QKeyEvent>
#include <QStackedLayout>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace kelvara {

namespace {

constexpr int symbolSide = 56;
/// Large enough that fit fills the window, as it will with the real picture.
constexpr double assumedLongSide = 6000;
constexpr double sameAspect = 0.015;

QString captionText(const DevelopPreset& preset) {
    auto caption = LoupeView::tr("Previewing preset “%1” (approximate) · \\ shows before / after")
                       .arg(text(preset.title));
    if (preset.unsupportedSettings.empty()) return caption;
    QStringList parts;
    for (const auto& part : preset.unsupportedSettings) parts.append(text(part));
    return caption + u'\n' + LoupeView::tr("Not previewed: %1").arg(parts.join(QStringLiteral(", ")));
}

} // namespace

LoupeView::LoupeView(LibraryViewModel& library, const ThumbnailSources& thumbnails, PreviewService& previews,
                     MetadataService& metadata, PresetStore& presets, PresetRenderer& presetRenderer,
                     Executor& rendering, Executor& main, QWidget* parent)
    : QWidget{parent}, m_library{library}, m_presets{presets}, m_edits{thumbnails.edits},
      m_pictures{library, thumbnails.service, previews, rendering, main, [this] { showPicture(); }},
      m_preview{library,
                thumbnails.service,
                presetRenderer,
                rendering,
                main,
                [this](const FileURL& photo) { return previewedPreset(photo); },
                [this] { showPicture(); }},
      m_metadata{metadata} {
    setFocusPolicy(Qt::StrongFocus);
    makeLayout(thumbnails);
    observe();
    refreshOverlays();
}

LoupeView::~LoupeView() = default;

void LoupeView::makeLayout(const ThumbnailSources& thumbnails) {
    m_image = new ZoomableImageView{this};
    m_video = new LoupeVideoPlayer{&VideoPlayer::make, this};
    m_cannotPreview = makeCannotPreview();
    m_info = new LoupeInfoBar{this};
    m_filmstrip = new FilmstripView{m_library, thumbnails, this};
    auto* stage = new QWidget{this};
    m_stage = new QStackedLayout{stage};
    m_stage->setContentsMargins({});
    for (auto* page : {static_cast<QWidget*>(m_image), static_cast<QWidget*>(m_video), m_cannotPreview}) {
        m_stage->addWidget(page);
    }
    auto* column = new QVBoxLayout{this};
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(stage, 1);
    column->addWidget(m_info);
    column->addWidget(m_filmstrip);
    connect(m_image, &ZoomableImageView::zoomChanged, this, &LoupeView::showPicture);

    m_beforeBadge = new PresetCaption{m_image};
    m_beforeBadge->setText(tr("Before"));
    m_caption = new PresetCaption{m_image};
    auto* over = new QVBoxLayout{m_image};
    over->setContentsMargins(spacing::medium, spacing::medium, spacing::medium, spacing::medium);
    over->addWidget(m_beforeBadge, 0, Qt::AlignLeft | Qt::AlignTop);
    over->addStretch(1);
    over->addWidget(m_caption, 0, Qt::AlignHCenter | Qt::AlignBottom);
}

QWidget* LoupeView::makeCannotPreview() {
    auto* page = new Panel{&Theme::canvas, this};
    m_cannotPreviewSymbol = new QLabel{page};
    auto* title = makeLabel(TextRole::title, Tone::normal, page, tr("Can't Preview"));
    auto* description = makeLabel(TextRole::body, Tone::quiet, page,
                                  tr("This file may be damaged or in an unsupported format."));
    description->setWordWrap(true);
    description->setAlignment(Qt::AlignCenter);
    auto* column = new QVBoxLayout{page};
    column->setContentsMargins(spacing::large, 0, spacing::large, 0);
    column->setSpacing(0);
    column->addStretch(5);
    column->addWidget(m_cannotPreviewSymbol, 0, Qt::AlignHCenter);
    column->addSpacing(spacing::large);
    column->addWidget(title, 0, Qt::AlignHCenter);
    column->addSpacing(spacing::small);
    column->addWidget(description);
    column->addStretch(6);
    return page;
}

void LoupeView::observe() {
    m_subscriptions.push_back(
        m_presets.observe({PresetProperty::activePreset, PresetProperty::showsPreviews}, [this](const auto&) {
            if (isVisible()) showPicture();
        }));
    m_subscriptions.push_back(m_edits.observe({EditProperty::adjustments}, [this](const auto&) {
        if (isVisible()) showPicture();
    }));
    using P = LibraryProperty;
    m_subscriptions.push_back(
        m_library.observe({P::focusedID, P::visibleItems}, [this](const auto&) { follow(); }));
    m_subscriptions.push_back(
        m_library.observe({P::checkedIDs, P::ratings}, [this](const auto&) { refreshInfo(); }));
    m_subscriptions.push_back(
        m_library.observe({P::showsLoupeOverlays}, [this](const auto&) { refreshOverlays(); }));
    m_subscriptions.push_back(m_library.observe({P::zoomRequest}, [this](const auto&) {
        if (isVisible() && m_library.zoomRequest()) m_image->perform(*m_library.zoomRequest());
    }));
    m_subscriptions.push_back(m_library.observe({P::keyFocusRequest, P::viewMode}, [this](const auto&) {
        if (isVisible() && m_library.viewMode() == ViewMode::loupe) setFocus();
    }));
}

bool LoupeView::showsVideo() const {
    const auto* item = m_library.focusedItem();
    return item && item->kind() == MediaKind::video;
}

bool LoupeView::isLoading() const {
    return isVisible() && (m_pictures.shown().isLoading || m_preview.isLoading() ||
                           (m_filmstrip->isVisible() && m_filmstrip->isLoading()));
}

void LoupeView::reloadPictures() {
    m_preview.show({});
    m_pictures.reload();
    m_filmstrip->reloadThumbnails();
    showPicture();
}

void LoupeView::togglePlayback() {
    if (isVisible() && showsVideo()) m_video->togglePlayback();
}

void LoupeView::toggleBefore() {
    if (!canShowBefore()) return;
    m_showsBefore = !m_showsBefore;
    showPicture();
}

PresetStore::Preset LoupeView::chosenPreset() const {
    return isVisible() && m_presets.showsPreviews() ? m_presets.activePreset() : nullptr;
}

PresetStore::Preset LoupeView::previewedPreset(const FileURL& photo) const {
    if (mediaKind(photo.extension()) == MediaKind::video) return nullptr;
    const auto preset = chosenPreset();
    if (m_edits.adjustments(photo).isEmpty()) return preset;
    const auto combined = m_edits.exportLook(preset ? std::optional{*preset} : std::nullopt, photo);
    return std::make_shared<const DevelopPreset>(*combined);
}

PresetStore::Preset LoupeView::previewedPreset() const {
    const auto* item = m_library.focusedItem();
    return isVisible() && item ? previewedPreset(item->url) : nullptr;
}

void LoupeView::follow() {
    if (!isVisible()) return;
    loadExposure(m_library.focusedItem());
    m_pictures.load(m_library.focusedItem());
    showPicture();
}

void LoupeView::loadExposure(const PhotoItem* item) {
    const auto url = item ? item->url : FileURL{};
    if (url == m_exposureURL) return;
    m_exposureURL = url;
    m_exposure.clear();
    m_exposureRequest = {};
    if (!item || item->kind() == MediaKind::video) return;
    const auto show = [this](const ExifInfo& info) { m_exposure = text(info.summaryLine()); };
    if (const auto known = m_metadata.cachedExif(url)) return show(*known);
    m_exposureRequest =
        m_metadata.exif(url, MetadataService::Priority::visible, [this, show](const ExifInfo& info) {
            show(info);
            refreshInfo();
        });
}

void LoupeView::showPicture() {
    const auto& shown = m_pictures.shown();
    m_video->open(showsVideo() ? shown.url : FileURL{});
    if (showsVideo()) {
        m_video->setPoster(shown.image ? shown.image->image() : QImage{});
        m_stage->setCurrentWidget(m_video);
    } else {
        m_stage->setCurrentWidget(shown.isUnreadable ? m_cannotPreview : m_image);
    }
    display();
    refreshInfo();
    refreshOverlays();
    emit pictureShown();
}

LoupeView::DisplaySize LoupeView::likelySize(const QImage& thumbnail, const ZoomSize& last) {
    const auto aspect = static_cast<double>(thumbnail.width()) / thumbnail.height();
    if (last.isPositive() && std::abs(last.width / last.height / aspect - 1) < sameAspect) {
        return {last, ZoomableImageView::SizeIs::likely};
    }
    const auto scale = assumedLongSide / std::max(thumbnail.width(), thumbnail.height());
    return {{std::round(thumbnail.width() * scale), std::round(thumbnail.height() * scale)},
            ZoomableImageView::SizeIs::unknown};
}

void LoupeView::display() {
    const auto& shown = m_pictures.shown();
    const auto plain = showsVideo() ? nullptr : shown.image;
    if (!plain) {
        m_image->clear();
    } else if (plain != m_plain) {
        const auto& pixels = plain->image();
        m_size =
            shown.isFullResolution
                ? DisplaySize{{static_cast<double>(pixels.width()), static_cast<double>(pixels.height())},
                              ZoomableImageView::SizeIs::known}
                : likelySize(pixels, m_image->geometry().pixelSize());
        m_image->display(plain, m_size.pixels, m_size.certainty);
    }
    m_plain = plain;

    const auto preset = previewedPreset();
    const std::pair compared{shown.url, preset ? preset->revision : PresetRevision{}};
    if (std::exchange(m_compared, compared) != compared) m_showsBefore = false;
    const auto magnification = m_image->geometry().target();
    m_preview.show(
        {shown.url, plain, preset,
         plain ? plain->levelFor(magnification * m_size.pixels.width / plain->image().width()) : 0});
    const auto& picture = m_preview.picture() && !m_showsBefore ? m_preview.picture() : plain;
    if (picture != m_image->image()) m_image->display(picture, m_size.pixels, m_size.certainty);
}

void LoupeView::refreshInfo() {
    LoupeInfoBar::Content content;
    QString name, value;
    if (const auto* item = m_library.focusedItem()) {
        content.url = item->url;
        content.position = m_library.focusedIndex().value_or(0) + 1;
        content.total = m_library.visibleItems().size();
        content.exposure = m_exposure;
        content.isChecked = m_library.isChecked(item->url);
        content.rating = m_library.rating(item->url);
        content.isLoadingFullResolution =
            !showsVideo() && (m_pictures.shown().isLoading || m_preview.isRefining());
        if (const auto& preset = m_presets.activePreset(); preset && !showsVideo())
            content.preset = text(preset->titleWithAmount());
        content.isEdited = !showsVideo() && !m_edits.adjustments(item->url).isEmpty();
        if (m_stage->currentWidget() == m_image) content.zoom = m_image->zoom();
        name = nameText(item->url);
        if (m_pictures.shown().isUnreadable) name = ThumbnailCell::unreadableText(name);
        value = ThumbnailCell::accessibleValue(content.isChecked, content.rating);
    }
    m_info->show(content);
    // It has the keyboard, so that tools read this when the photo changes.
    setAccessibleName(name);
    setAccessibleDescription(value);
}

void LoupeView::refreshOverlays() {
    const auto shows = m_library.showsLoupeOverlays();
    m_info->setVisible(shows);
    m_filmstrip->setVisible(shows);
    const auto preset = showsVideo() ? nullptr : chosenPreset();
    if (preset) m_caption->setText(captionText(*preset));
    m_caption->setVisible(shows && preset && m_plain);
    m_beforeBadge->setVisible(shows && m_showsBefore);
}

void LoupeView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    m_image->resetZoom();
    showCannotPreviewSymbol();
    follow();
    setFocus();
}

void LoupeView::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    m_pictures.load(nullptr);
    loadExposure(nullptr);
    m_preview.show({});
    m_plain = nullptr;
    m_image->clear();
    m_video->open({});
    emit pictureShown();
}

void LoupeView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) showCannotPreviewSymbol();
}

void LoupeView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_K && event->modifiers() == Qt::NoModifier && showsVideo())
        return togglePlayback();
    QWidget::keyPressEvent(event);
}

void LoupeView::contextMenuEvent(QContextMenuEvent* event) {
    if (m_library.focusedItem()) emit photoMenuRequested(event->globalPos());
}

void LoupeView::showCannotPreviewSymbol() {
    m_cannotPreviewSymbol->setPixmap(
        symbol(u"exclamationmark.triangle", symbolSide, Theme::current().tertiaryText, devicePixelRatioF()));
}

} // namespace kelvara
