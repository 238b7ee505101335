#include "views/LibraryToolbar.h"

#include "library/PreferenceKeys.h"
#include "platform/Preferences.h"
#include "views/CopyButton.h"
#include "views/EmptyState.h"
#include "views/Inspector.h"
#include "views/Segments.h"
#include "views/ShareMenuItems.h"
#include "views/Symbols.h"

#include <QHBoxLayout>
#include <QMenu>
#include <QSlider>

#include <algorithm>

namespace kelvara {

namespace {
constexpr int smallestThumbnail = 96;
constexpr int largestThumbnail = 400;
constexpr double usualThumbnail = 180;
constexpr int sliderWidth = 160;
constexpr int toolbarHeight = 48;

/// What the end of the slider means.
QToolButton* makeSizeSign(QStringView symbolName, QWidget* parent) {
    auto* sign = new QToolButton{parent};
    sign->setIcon(symbolIcon(symbolName, &Theme::secondaryText));
    sign->setIconSize({14, 14});
    sign->setFocusPolicy(Qt::NoFocus);
    sign->setAttribute(Qt::WA_TransparentForMouseEvents);
    return sign;
}

} // namespace

LibraryToolbar::LibraryToolbar(LibraryViewModel& library, Preferences& preferences,
                               const ShareMenuItems& sharing, QWidget* parent)
    : Panel{&Theme::window, parent}, m_library{library}, m_preferences{preferences} {
    setFixedHeight(toolbarHeight);
    m_title = new ElidedLabel{this, Qt::ElideRight};
    dress(*m_title, TextRole::headline, Tone::normal);
    m_title->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_title->setMinimumWidth(30);

    auto* row = new QHBoxLayout{this};
    row->setContentsMargins(spacing::medium + 2, spacing::small, spacing::small + 2, spacing::tiny);
    row->setSpacing(spacing::medium);
    row->addWidget(m_title, 1);
    m_sizeControl = makeSizeSlider();
    row->addWidget(m_sizeControl);
    row->addWidget(makeViewModePicker());
    row->addWidget(makeShareButton(sharing));
    row->addWidget(new CopyButton{library, sharing, this});
    row->addWidget(new InspectorToggles{library, this});

    using P = LibraryProperty;
    m_subscriptions.push_back(
        m_library.observe({P::sourceURL, P::volumes}, [this](const auto&) { refreshTitle(); }));
    m_subscriptions.push_back(
        m_library.observe({P::viewMode, P::focusedID, P::items}, [this](const auto&) { refreshViewMode(); }));
    refreshTitle();
    refreshViewMode();
}

double LibraryToolbar::thumbnailSize() const { return m_size->value(); }

QWidget* LibraryToolbar::makeViewModePicker() {
    auto* segments = new Segments{this};
    segments->setAccessibleName(tr("View Mode"));
    const auto add = [&](QStringView symbolName, const QString& name) {
        auto* segment = makeIconButton(symbolName, name, tr("Toggle Grid / Single Image (Space)"), segments);
        segments->add(segment);
        return segment;
    };
    m_gridSegment = add(u"square.grid.2x2", tr("Grid"));
    m_loupeSegment = add(u"rectangle", tr("Single Image"));
    connect(m_gridSegment, &QToolButton::clicked, this, [this] { m_library.showGrid(); });
    connect(m_loupeSegment, &QToolButton::clicked, this, [this] {
        if (m_library.viewMode() == ViewMode::grid) m_library.toggleViewMode();
        refreshViewMode(); // where nothing can be shown, the grid stays chosen
    });
    return segments;
}

QWidget* LibraryToolbar::makeShareButton(const ShareMenuItems& sharing) {
    m_share = makeIconButton(u"square.and.arrow.up", tr("Share"),
                             tr("Share the selected photo, or all marked photos if it is marked"), this);
    auto* menu = new QMenu{m_share};
    connect(menu, &QMenu::aboutToShow, this, [this, menu, &sharing] {
        menu->clear();
        sharing.addTo(*menu, shareAnchor(*m_share));
    });
    m_share->setMenu(menu);
    m_share->setPopupMode(QToolButton::InstantPopup);
    return m_share;
}

QWidget* LibraryToolbar::makeSizeSlider() {
    auto* control = new QWidget{this};
    auto policy = control->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    control->setSizePolicy(policy);
    m_size = new QSlider{Qt::Horizontal, control};
    m_size->setRange(smallestThumbnail, largestThumbnail);
    m_size->setPageStep(32);
    m_size->setSingleStep(8);
    m_size->setFixedWidth(sliderWidth);
    m_size->setFocusPolicy(Qt::TabFocus);
    m_size->setAccessibleName(tr("Thumbnail Size"));
    m_size->setToolTip(tr("Thumbnail size"));
    m_size->setValue(
        static_cast<int>(m_preferences.number(PreferenceKeys::gridThumbnailSize).value_or(usualThumbnail)));
    connect(m_size, &QSlider::valueChanged, this, [this](int side) {
        m_preferences.setNumber(PreferenceKeys::gridThumbnailSize, side);
        emit thumbnailSizeChanged(side);
    });
    auto* row = new QHBoxLayout{control};
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing::small);
    m_sizeSigns = {makeSizeSign(u"square.grid.3x3", control), makeSizeSign(u"square", control)};
    row->addWidget(m_sizeSigns.front());
    row->addWidget(m_size);
    row->addWidget(m_sizeSigns.back());
    return control;
}

void LibraryToolbar::refreshTitle() {
    m_title->setText(sourceTitle(m_library));
    m_title->setAccessibleName(tr("Source"));
}

void LibraryToolbar::refreshViewMode() {
    const auto isGrid = m_library.viewMode() == ViewMode::grid;
    m_gridSegment->setChecked(isGrid);
    m_loupeSegment->setChecked(!isGrid);
    m_loupeSegment->setEnabled(!m_library.focusedID().isEmpty());
    m_share->setEnabled(!m_library.focusedID().isEmpty());
    makeRoom();
}

void LibraryToolbar::makeRoom() {
    // In a narrow window the slider goes first: the copy button is what everything else leads to.
    auto policy = m_sizeControl->sizePolicy();
    const auto isNarrow = width() < 700;
    for (auto* sign : m_sizeSigns) sign->setVisible(width() >= 860);
    policy.setRetainSizeWhenHidden(!isNarrow);
    m_sizeControl->setSizePolicy(policy);
    m_sizeControl->setVisible(!isNarrow && m_library.viewMode() == ViewMode::grid &&
                              !m_library.items().empty());
}

void LibraryToolbar::resizeEvent(QResizeEvent* event) {
    Panel::resizeEvent(event);
    makeRoom();
}

} // namespace kelvara
