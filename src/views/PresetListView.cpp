#include "views/PresetListView.h"

#include "views/Text.h"
#include "views/Theme.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace kelvara {

namespace {

constexpr int scrollStep = 34;

/// Empty where the focused photo is none that presets can be shown on.
FileURL shownPhoto(const LibraryViewModel& library) {
    const auto* item = library.focusedItem();
    const auto isStill = item && item->kind() && isStillImage(*item->kind());
    return isStill ? item->url : FileURL{};
}

QStringView absence(const LibraryViewModel& library) {
    const auto* item = library.focusedItem();
    return item && item->kind() == MediaKind::video ? u"film" : u"photo";
}

} // namespace

PresetListView::PresetListView(LibraryViewModel& library, PresetStore& presets, ThumbnailService& thumbnails,
                               PresetTileService& tiles, QWidget* parent)
    : QAbstractScrollArea{parent}, m_library{library}, m_presets{presets},
      m_pictures{thumbnails, tiles, [this] { viewport()->update(); }} {
    makePresetListsAccessible();
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // The columns don't depend on whether there is enough to scroll.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setFocusPolicy(Qt::TabFocus); // a click leaves the keys with the photos
    setAccessibleName(tr("Presets"));
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setMouseTracking(true);
    observe();
    relayout();
}

void PresetListView::observe() {
    using S = PresetProperty;
    m_subscriptions.push_back(m_presets.observe({S::visibleCategories, S::expandedCategories},
                                                [this](const auto&) { relayout(); }));
    m_subscriptions.push_back(
        m_presets.observe({S::searchText}, [this](const auto&) { verticalScrollBar()->setValue(0); }));
    m_subscriptions.push_back(
        m_presets.observe({S::favourites}, [this](const auto&) { viewport()->update(); }));
    m_subscriptions.push_back(
        m_presets.observe({S::selectedPresetID}, [this](const auto&) { followSelection(); }));
    using P = LibraryProperty;
    m_subscriptions.push_back(
        m_library.observe({P::focusedID, P::visibleItems, P::items}, [this](const auto&) {
            loadVisible();
            viewport()->update();
        }));
}

// Entries

const PresetCategory& PresetListView::category(std::size_t index) const {
    return m_categories[entry(index).section];
}

PresetPictures::Preset PresetListView::preset(std::size_t index) const {
    return entry(index).kind == Entry::Kind::tile ? category(index).presets[entry(index).preset] : nullptr;
}

std::string PresetListView::presetID(std::size_t index) const {
    const auto shown = preset(index);
    return shown ? shown->id : std::string{};
}

bool PresetListView::isHeader(std::size_t index) const { return entry(index).kind == Entry::Kind::header; }

bool PresetListView::isOn(std::size_t index) const {
    if (isHeader(index)) return m_presets.isExpanded(category(index).id);
    return presetID(index) == m_presets.selectedPresetID();
}

QString PresetListView::title(std::size_t index) const {
    if (isHeader(index)) return text(category(index).title);
    const auto shown = preset(index);
    return shown ? text(shown->title) : tr("None");
}

QString PresetListView::description(std::size_t index) const {
    if (isHeader(index)) return countText(static_cast<std::int64_t>(category(index).presets.size()));
    const auto shown = preset(index);
    if (!shown) return tr("The photo as shot");
    return shown->summary ? text(*shown->summary) : QString{};
}

PresetListView::Place PresetListView::place(std::size_t index) const {
    const auto kind = entry(index).kind;
    return {kind, kind == Entry::Kind::none ? std::string{} : category(index).id, presetID(index)};
}

std::optional<std::size_t> PresetListView::index(const Place& wanted) const {
    const auto count = m_layout.entries().size();
    for (std::size_t i = 0; i < count; ++i) {
        if (entry(i).kind == wanted.kind && place(i) == wanted) return i;
    }
    return std::nullopt;
}

std::optional<std::size_t> PresetListView::indexOfPreset(const std::string& presetID) const {
    // A favourite stands in two places; the one where the keyboard is comes first.
    if (m_current.preset == presetID && m_current.kind != Entry::Kind::header) {
        if (const auto current = index(m_current)) return current;
    }
    const auto count = m_layout.entries().size();
    for (std::size_t i = 0; i < count; ++i) {
        if (!isHeader(i) && this->presetID(i) == presetID) return i;
    }
    return std::nullopt;
}

std::optional<std::size_t> PresetListView::currentIndex() const { return index(m_current); }

// Layout

int PresetListView::top() const { return verticalScrollBar()->value(); }

QRect PresetListView::entryRect(std::size_t index) const { return entry(index).rect.translated(0, -top()); }

std::optional<std::size_t> PresetListView::indexAt(const QPoint& canvasPoint) const {
    return m_layout.indexAt(canvasPoint + QPoint{0, top()});
}

void PresetListView::relayout() {
    // What is pointed at, or else the first whole entry, stays where it is.
    const auto shown = m_layout.visible(top() + 1, viewport()->height());
    const bool wasHovered = m_hovered.has_value();
    std::optional<std::pair<Place, int>> anchor;
    for (auto i = shown.begin; i < shown.end && !anchor; ++i) {
        if (m_hovered ? i == *m_hovered : entryRect(i).top() >= 0)
            anchor.emplace(place(i), entryRect(i).top());
    }
    unhover();
    m_categories = m_presets.visibleCategories();
    std::vector<PresetListLayout::Section> sections;
    sections.reserve(m_categories.size());
    for (const auto& category : m_categories)
        sections.push_back({category.presets.size(), m_presets.isExpanded(category.id)});
    m_layout = {viewport()->width(), PresetTile::titleHeight(), sections};
    auto* bar = verticalScrollBar();
    bar->setPageStep(viewport()->height());
    bar->setSingleStep(scrollStep);
    bar->setRange(0, std::max(m_layout.contentHeight() - viewport()->height(), 0));
    bar->setEnabled(bar->maximum() > 0);
    if (anchor && (top() > 0 || wasHovered)) {
        if (const auto kept = index(anchor->first)) bar->setValue(entry(*kept).rect.top() - anchor->second);
    }
    loadVisible();
    hoverWhatIsUnderPointer();
    tellAssistiveTools(*this, QAccessible::ObjectReorder);
    viewport()->update();
}

void PresetListView::loadVisible() {
    std::vector<PresetPictures::Preset> presets;
    if (isVisible()) {
        const auto range = m_layout.visible(top(), viewport()->height());
        for (auto i = range.begin; i < range.end; ++i) {
            if (!isHeader(i)) presets.push_back(preset(i));
        }
    }
    const auto pixels = QSizeF{m_layout.pictureSize()} * devicePixelRatioF();
    m_pictures.show(shownPhoto(m_library), presets, pixels.toSize());
}

void PresetListView::showEntry(std::size_t index) {
    // What comes under a resting pointer isn't what the user asked for.
    const QScopedValueRollback scrolling{m_isShowingEntry, true};
    verticalScrollBar()->setValue(m_layout.topThatShows(index, top(), viewport()->height()));
}

void PresetListView::followSelection() {
    viewport()->update();
    // What was pressed stays where it is, and so does the keyboard.
    if (m_isPressing) return;
    // Nothing is looked for where none is chosen any more, as when the preset went to the Trash.
    const auto& id = m_presets.selectedPresetID();
    const auto selected = id.empty() ? std::nullopt : indexOfPreset(id);
    if (!selected) return;
    m_current = place(*selected);
    showEntry(*selected);
}

void PresetListView::reveal(const std::string& presetID) {
    for (const auto& category : m_categories) {
        const auto isHere =
            std::ranges::any_of(category.presets, [&](const auto& preset) { return preset->id == presetID; });
        if (!isHere) continue;
        const auto id = category.id; // the change renews the list
        m_presets.setExpanded(id, true);
        if (const auto at = index({Entry::Kind::tile, id, presetID})) showEntry(*at);
        return;
    }
}

// Painting

PresetTileState PresetListView::tileState(std::size_t index) const {
    const auto& picture = m_pictures[preset(index)];
    PresetTileState state;
    state.title = title(index);
    state.picture = picture.image;
    state.isFaint = picture.isOld;
    if (shownPhoto(m_library).isEmpty() || picture.isFinal) state.absence = absence(m_library);
    state.isSelected = isOn(index);
    state.isHovered = m_hovered == index;
    state.isFavourite = m_presets.isFavourite(presetID(index));
    state.isStarHovered = state.isHovered && m_isStarHovered;
    state.hasKeyboard = hasFocus() && place(index) == m_current;
    return state;
}

void PresetListView::paintEntry(QPainter& painter, std::size_t index) {
    const auto rect = entryRect(index);
    switch (entry(index).kind) {
    case Entry::Kind::none:
        return PresetTile::paintNone(painter, rect, tileState(index));
    case Entry::Kind::tile:
        return PresetTile::paint(painter, rect, m_layout.pictureSize(), tileState(index));
    case Entry::Kind::header:
        return PresetTile::paintHeader(painter, rect,
                                       {.title = title(index),
                                        .count = description(index),
                                        .isExpanded = isOn(index),
                                        .isHovered = m_hovered == index,
                                        .hasKeyboard = hasFocus() && place(index) == m_current});
    }
}

void PresetListView::paintEvent(QPaintEvent* event) {
    QPainter painter{viewport()};
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.fillRect(event->rect(), Theme::current().panel);
    const auto range = m_layout.visible(top(), viewport()->height());
    for (auto i = range.begin; i < range.end; ++i) paintEntry(painter, i);
}

void PresetListView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    relayout();
}

void PresetListView::scrollContentsBy(int, int) {
    loadVisible();
    m_isShowingEntry ? unhover() : hoverWhatIsUnderPointer();
    viewport()->update();
}

void PresetListView::showEvent(QShowEvent* event) {
    QAbstractScrollArea::showEvent(event);
    relayout();
}

void PresetListView::hideEvent(QHideEvent* event) {
    QAbstractScrollArea::hideEvent(event);
    unhover();
    loadVisible(); // which is nothing now
}

void PresetListView::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange ||
        event->type() == QEvent::FontChange) {
        relayout();
    }
}

} // namespace kelvara
