#include "views/LoupeInfoBar.h"

#include "views/BusyIndicator.h"
#include "views/RatingStars.h"
#include "views/Symbols.h"
#include "views/Text.h"

#include <QEvent>
#include <QHBoxLayout>

namespace kelvara {

namespace {

constexpr int barHeight = 34;
constexpr int starSize = 14;
constexpr int markSize = 16;
constexpr int presetSymbolSize = 15;
constexpr int roomForHelp = 1240;
constexpr int roomForExposure = 680;
constexpr int roomForLoading = 540;
constexpr int roomForName = 400;
constexpr int roomForStars = 340;
constexpr int roomForPresetSymbol = 300;
constexpr int roomForPreset = 460;
// What the preset takes from the others.
constexpr int presetSymbolWidth = 40;
constexpr int presetWidth = 160;
constexpr int longestPreset = 200;

QPixmap starsPixmap(Rating rating, qreal ratio) {
    QPixmap pixmap{(QSizeF{static_cast<qreal>(RatingStars::width(starSize)), starSize} * ratio).toSize()};
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter{&pixmap};
    const auto& theme = Theme::current();
    RatingStars::paint(painter, {0, 0}, rating, starSize,
                       rating == Rating{} ? theme.secondaryText : theme.star, RatingStars::Empty::shown);
    return pixmap;
}

} // namespace

LoupeInfoBar::LoupeInfoBar(QWidget* parent) : Panel{&Theme::window, parent} {
    setHairlines(Qt::TopEdge);
    setFixedHeight(barHeight);
    // What it says never widens the window, which would move the picture.
    setMinimumWidth(1);
    m_position = makeLabel(TextRole::caption, Tone::quiet, this);
    m_name = new ElidedLabel{this};
    dress(*m_name, TextRole::caption, Tone::normal);
    m_exposure = makeLabel(TextRole::caption, Tone::quiet, this);
    m_mark = new QLabel{this};
    m_stars = new QLabel{this};
    m_edited = new QLabel{this};
    m_edited->setToolTip(tr("Edited"));
    m_edited->setAccessibleName(tr("Edited"));
    m_presetSymbol = new QLabel{this};
    m_presetSymbol->setContentsMargins(spacing::tiny, 0, 0, 0);
    m_preset = new ElidedLabel{this};
    dress(*m_preset, TextRole::caption, Tone::normal);
    m_preset->setMaximumWidth(longestPreset);
    m_busy = new BusyIndicator{14, this};
    m_loading = makeLabel(TextRole::caption, Tone::quiet, this, tr("Loading full resolution…"));
    const auto help = tr("Z or double-click: Fit / 100% · ⌘+ ⌘− ⌘0 · ⌘-scroll, ⌥-scroll or pinch to zoom");
    m_help = makeLabel(TextRole::caption, Tone::quiet, this, help);
    m_zoom = makeLabel(TextRole::caption, Tone::normal, this);
    m_zoom->setToolTip(help);
    m_zoom->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    // As wide as it gets, so that nothing beside it moves while the zoom changes.
    m_zoom->setMinimumWidth(m_zoom->fontMetrics().horizontalAdvance(tr("Fit (%1%)").arg(100)) + 2);

    auto* row = new QHBoxLayout{this};
    row->setContentsMargins(spacing::medium, 1, spacing::medium, 0);
    row->setSpacing(spacing::small);
    row->addWidget(m_position);
    row->addWidget(m_name);
    row->addSpacing(spacing::tiny);
    row->addWidget(m_exposure);
    row->addSpacing(spacing::tiny);
    row->addWidget(m_stars);
    row->addWidget(m_mark);
    row->addWidget(m_edited);
    row->addWidget(m_presetSymbol);
    row->addWidget(m_preset);
    row->addStretch(1);
    row->addWidget(m_busy);
    row->addWidget(m_loading);
    row->addSpacing(spacing::tiny);
    row->addWidget(m_help);
    row->addSpacing(spacing::tiny);
    row->addWidget(m_zoom);
    refresh();
}

void LoupeInfoBar::show(const Content& content) {
    if (content == m_content) return;
    m_content = content;
    refresh();
}

void LoupeInfoBar::refresh() {
    const auto ratio = devicePixelRatioF();
    m_position->setText(m_content.total == 0
                            ? QString{}
                            : tr("%1 / %2").arg(countText(static_cast<std::int64_t>(m_content.position)),
                                                countText(static_cast<std::int64_t>(m_content.total))));
    m_name->setText(nameText(m_content.url));
    m_exposure->setText(m_content.exposure);
    m_stars->setPixmap(starsPixmap(m_content.rating, ratio));
    m_stars->setAccessibleName(RatingStars::text(m_content.rating));
    m_mark->setVisible(m_content.isChecked);
    m_mark->setPixmap(symbol(u"checkmark.circle.fill", markSize, Theme::current().mark, ratio));
    m_mark->setAccessibleName(tr("Marked"));
    m_edited->setPixmap(
        symbol(u"slider.horizontal.3", presetSymbolSize, Theme::current().secondaryText, ratio));
    m_presetSymbol->setPixmap(
        symbol(u"camera.filters", presetSymbolSize, Theme::current().secondaryText, ratio));
    m_presetSymbol->setAccessibleName(tr("Preset"));
    m_presetSymbol->setToolTip(m_content.preset);
    m_preset->setText(m_content.preset);
    m_busy->setVisible(m_content.isLoadingFullResolution);
    makeRoom();
    m_zoom->setVisible(m_content.zoom.has_value());
    if (m_content.zoom) {
        const auto& [percent, isAtFit] = *m_content.zoom;
        m_zoom->setText((isAtFit ? tr("Fit (%1%)") : tr("%1%")).arg(percent));
    } else {
        m_zoom->clear();
    }
}

void LoupeInfoBar::resizeEvent(QResizeEvent* event) {
    Panel::resizeEvent(event);
    makeRoom();
}

void LoupeInfoBar::makeRoom() {
    const auto hasPreset = !m_content.preset.isEmpty() && width() >= roomForPresetSymbol;
    m_edited->setVisible(m_content.isEdited && width() >= roomForPresetSymbol);
    const auto namesPreset = hasPreset && width() >= roomForPreset;
    m_presetSymbol->setVisible(hasPreset);
    m_preset->setVisible(namesPreset);
    const auto room = width() - (namesPreset ? presetWidth : hasPreset ? presetSymbolWidth : 0);
    m_name->setVisible(room >= roomForName);
    m_stars->setVisible(room >= roomForStars);
    m_loading->setVisible(m_content.isLoadingFullResolution && room >= roomForLoading);
    m_help->setVisible(m_content.zoom && room >= roomForHelp);
    m_exposure->setVisible(!m_content.exposure.isEmpty() && room >= roomForExposure);
}

void LoupeInfoBar::changeEvent(QEvent* event) {
    Panel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) refresh();
}

} // namespace kelvara
