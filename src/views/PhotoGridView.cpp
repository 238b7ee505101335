#include "views/PhotoGridView.h"

#include "library/PreferenceKeys.h"
#include "platform/Preferences.h"
#include "views/Text.h"
#include "views/Theme.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

namespace kelvara {

namespace {

constexpr double usualSide = 180;
constexpr std::size_t rowsAhead = 3;
constexpr int settleMilliseconds = 120;

int toSide(double points) { return std::max(static_cast<int>(std::lround(points)), 32); }

} // namespace

PhotoGridView::PhotoGridView(LibraryViewModel& library, const ThumbnailSources& thumbnails,
                             MetadataService& metadata, Preferences& preferences, QWidget* parent)
    : QAbstractScrollArea{parent}, m_library{library}, m_preferences{preferences},
      m_service{thumbnails.service}, m_thumbnails{thumbnails,
                                                  [this](const FileURL& url) { updateCell(url); }},
      m_exposures{metadata, [this](const FileURL& url) { updateCell(url); }},
      m_side{toSide(preferences.number(PreferenceKeys::gridThumbnailSize).value_or(usualSide))} {
    makeCellsAccessible(*this);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // The columns don't depend on whether there is enough to scroll.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Photos"));
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setMouseTracking(true);
    m_settled.setSingleShot(true);
    m_settled.setInterval(settleMilliseconds);
    connect(&m_settled, &QTimer::timeout, this, &PhotoGridView::prefetch);
    m_showsInfo = m_preferences.boolean(PreferenceKeys::gridShowsInfo).value_or(true);
    observeLibrary();
    relayout(std::nullopt);
}

PhotoGridView::~PhotoGridView() = default;

void PhotoGridView::observeLibrary() {
    using P = LibraryProperty;
    m_layoutSubscription = m_library.observe({P::items, P::visibleItems}, [this](const auto&) {
        unhover();
        m_press.reset();
        m_loadedRange = {};
        relayout(std::nullopt);
        showFocused();
    });
    m_focusSubscription = m_library.observe({P::focusedID}, [this](const auto&) {
        showFocused();
        viewport()->update();
    });
    m_stateSubscription =
        m_library.observe({P::checkedIDs, P::ratings}, [this](const auto&) { viewport()->update(); });
    m_keySubscription = m_library.observe({P::keyFocusRequest, P::viewMode}, [this](const auto&) {
        if (isVisible() && m_library.viewMode() == ViewMode::grid) setFocus();
    });
}

void PhotoGridView::readPreferences() {
    const auto shown = anchor();
    m_showsInfo = m_preferences.boolean(PreferenceKeys::gridShowsInfo).value_or(true);
    relayout(shown);
}

void PhotoGridView::setThumbnailSize(double points) {
    if (toSide(points) == m_side) return;
    const auto shown = anchor();
    m_side = toSide(points);
    relayout(shown);
}

int PhotoGridView::top() const { return verticalScrollBar()->value(); }

int PhotoGridView::pixelSize() const { return static_cast<int>(std::ceil(m_side * devicePixelRatioF())); }

IndexRange PhotoGridView::visibleRange() const { return m_layout.visible(top(), viewport()->height()); }

QRect PhotoGridView::cellRect(std::size_t index) const { return m_layout.cell(index).translated(0, -top()); }

std::optional<std::size_t> PhotoGridView::indexAt(const QPoint& viewportPoint) const {
    return m_layout.indexAt(viewportPoint + QPoint{0, top()});
}

std::optional<PhotoGridView::Anchor> PhotoGridView::anchor() const { return anchor(viewport()->size()); }

std::optional<PhotoGridView::Anchor> PhotoGridView::anchor(const QSize& shown) const {
    const auto range = m_layout.visible(top(), shown.height());
    if (range.begin == range.end) return std::nullopt;
    const auto focused = m_library.focusedIndex();
    const bool seesFocus = focused && QRect{{}, shown}.contains(cellRect(*focused));
    const auto index = seesFocus ? *focused : range.begin;
    return Anchor{index, cellRect(index).top()};
}

void PhotoGridView::relayout(const std::optional<Anchor>& anchor) {
    const auto count = m_library.visibleItems().size();
    m_layout = {viewport()->width(), m_side, m_showsInfo ? ThumbnailCell::infoHeight() : 0, count};
    auto* bar = verticalScrollBar();
    const auto height = viewport()->height();
    bar->setPageStep(height);
    bar->setSingleStep(std::max(m_layout.rowStep() / 4, 20));
    bar->setRange(0, std::max(m_layout.contentHeight() - height, 0));
    if (anchor && anchor->index < count) {
        const auto kept = m_layout.cell(anchor->index).top() - anchor->offset;
        const auto focused = m_library.focusedIndex();
        bar->setValue(focused == anchor->index ? m_layout.topThatShows(anchor->index, kept, height) : kept);
    }
    m_library.setColumnCount(m_layout.columns());
    loadVisible();
    viewport()->update();
}

void PhotoGridView::showFocused() {
    const auto focused = m_library.focusedIndex();
    if (!focused || m_library.visibleItems().isEmpty()) return;
    verticalScrollBar()->setValue(m_layout.topThatShows(*focused, top(), viewport()->height()));
}

void PhotoGridView::loadVisible() {
    const auto range = isVisible() ? visibleRange() : IndexRange{};
    m_loadedRange = range;
    std::vector<FileURL> urls, exposed;
    urls.reserve(range.end - range.begin);
    for (auto index = range.begin; index < range.end; ++index) {
        const auto& item = m_library.visibleItems()[index];
        urls.push_back(item.url);
        if (m_showsInfo && item.kind() && isStillImage(*item.kind())) exposed.push_back(item.url);
    }
    m_thumbnails.show(urls, pixelSize());
    m_exposures.show(exposed);
    m_settled.start();
}

void PhotoGridView::prefetch() {
    if (!isVisible()) return;
    std::vector<FileURL> urls;
    for (const auto& item : m_library.prefetchCandidates(visibleRange(), rowsAhead)) {
        if (item.kind() && isStillImage(*item.kind())) urls.push_back(item.url);
    }
    m_service.prefetch(urls, pixelSize());
}

ThumbnailCellState PhotoGridView::state(std::size_t index) const {
    const auto& item = m_library.visibleItems()[index];
    const auto& thumbnail = m_thumbnails[item.url];
    ThumbnailCellState state;
    state.picture = thumbnail.picture;
    state.kind = item.kind();
    if (!thumbnail.picture.isNull()) {
        state.content = ThumbnailCellState::Content::picture;
    } else if (thumbnail.isFinal && state.kind != MediaKind::video) {
        state.content = ThumbnailCellState::Content::unreadable;
    }
    state.name = nameText(item.url);
    state.exposure = m_exposures[item.url];
    state.badge = text(item.url.extension()).toUpper();
    state.rating = m_library.rating(item.url);
    state.isEdited = m_thumbnails.isEdited(item.url);
    state.showsInfo = m_showsInfo;
    state.isMarked = m_library.isChecked(item.url);
    state.isFocused = item.url == m_library.focusedID();
    state.isHovered = m_hovered == index;
    state.isMarkHovered = state.isHovered && m_isMarkHovered;
    return state;
}

void PhotoGridView::updateCell(const FileURL& url) {
    constexpr int ring = 4;
    if (const auto index = m_library.visibleIndex(url)) {
        viewport()->update(cellRect(*index).adjusted(-ring, -ring, ring, ring));
    }
}

void PhotoGridView::paintEvent(QPaintEvent* event) {
    QPainter painter{viewport()};
    const auto dirty = event->rect();
    painter.fillRect(dirty, Theme::current().canvas);
    if (m_library.visibleItems().isEmpty()) return;
    m_painter.begin();
    const auto range = m_layout.visible(top() + dirty.top(), dirty.height());
    for (auto index = range.begin; index < range.end; ++index) {
        const auto rect = cellRect(index);
        if (!rect.intersects(dirty)) continue;
        m_painter.paint(painter, rect, m_library.visibleItems()[index].url, state(index));
    }
    if (const auto focused = m_library.focusedIndex();
        focused && *focused >= range.begin && *focused < range.end) {
        ThumbnailCell::paintFocusRing(painter, cellRect(*focused));
    }
    const auto onScreen = visibleRange();
    if (m_painter.end(onScreen.end - onScreen.begin)) {
        QTimer::singleShot(0, viewport(), [this] { viewport()->update(); });
    }
}

void PhotoGridView::resizeEvent(QResizeEvent* event) {
    // The viewport is already new; the old layout and the old size still say what was seen.
    const auto shown = anchor(event->oldSize());
    QAbstractScrollArea::resizeEvent(event);
    relayout(shown);
}

void PhotoGridView::scrollContentsBy(int, int) {
    const auto range = visibleRange();
    if (!(range == m_loadedRange)) loadVisible();
    m_settled.start();
    hover(viewport()->mapFromGlobal(QCursor::pos()));
    viewport()->update();
}

void PhotoGridView::showEvent(QShowEvent* event) {
    QAbstractScrollArea::showEvent(event);
    relayout(anchor());
    showFocused();
}

void PhotoGridView::hideEvent(QHideEvent* event) {
    QAbstractScrollArea::hideEvent(event);
    unhover();
    m_thumbnails.show({}, pixelSize());
    m_exposures.show({});
    m_loadedRange = {};
    m_settled.stop();
}

void PhotoGridView::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange ||
        event->type() == QEvent::FontChange) {
        m_painter.clear();
        relayout(anchor());
    }
}

} // namespace kelvara
