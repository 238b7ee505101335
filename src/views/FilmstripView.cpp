#include "views/FilmstripView.h"

#include "views/ApplicationStyle.h"
#include "views/PhotoDrag.h"
#include "views/Text.h"
#include "views/Theme.h"

#include <QApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace kelvara {

namespace {

constexpr int side = 72;
constexpr int gap = 4;
constexpr int step = side + gap;
constexpr int margin = 8;
constexpr double wheelNotch = 120;
constexpr std::size_t extraLoaded = 4; // cells beyond either edge that are ready when they come in
constexpr double easingPerSecond = 16;

} // namespace

FilmstripView::FilmstripView(LibraryViewModel& library, const ThumbnailSources& thumbnails, QWidget* parent)
    : QWidget{parent}, m_library{library}, m_thumbnails{thumbnails, [this](const FileURL& url) {
                                                            if (const auto index =
                                                                    m_library.visibleIndex(url)) {
                                                                update(cellRect(*index));
                                                            }
                                                        }} {
    makeCellsAccessible(*this);
    setFixedHeight(side + 2 * margin);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setAccessibleName(tr("Filmstrip"));
    m_frames.setInterval(16);
    m_frames.setTimerType(Qt::PreciseTimer);
    connect(&m_frames, &QTimer::timeout, this, &FilmstripView::step);
    using P = LibraryProperty;
    m_listSubscription = m_library.observe({P::items, P::visibleItems}, [this](const auto&) {
        m_hovered.reset();
        m_loadedRange = {};
        showFocused(Motion::atOnce);
    });
    m_focusSubscription =
        m_library.observe({P::focusedID}, [this](const auto&) { showFocused(Motion::smooth); });
    m_stateSubscription = m_library.observe({P::checkedIDs, P::ratings}, [this](const auto&) { update(); });
}

QRect FilmstripView::cellRect(std::size_t index) const {
    const auto left = static_cast<double>(index) * kelvara::step - m_offset;
    return {static_cast<int>(std::lround(left)), margin, side, side};
}

std::optional<std::size_t> FilmstripView::indexAt(const QPoint& point) const {
    const auto x = m_offset + point.x();
    if (x < 0) return std::nullopt;
    const auto index = static_cast<std::size_t>(x / kelvara::step);
    if (index >= m_library.visibleItems().size()) return std::nullopt;
    return index;
}

double FilmstripView::constrained(double offset) const {
    const auto whole =
        static_cast<double>(m_library.visibleItems().size()) * kelvara::step - gap + 2 * margin;
    if (whole <= width()) return (whole - width()) / 2 - margin;
    return std::clamp(offset, static_cast<double>(-margin), whole - margin - width());
}

IndexRange FilmstripView::visibleRange() const {
    const auto count = m_library.visibleItems().size();
    const auto first = std::max(m_offset / kelvara::step, 0.0);
    const auto last = std::max((m_offset + width()) / kelvara::step, 0.0);
    return {std::min(static_cast<std::size_t>(first), count),
            std::min(static_cast<std::size_t>(last) + 1, count)};
}

void FilmstripView::showFocused(Motion motion) {
    update();
    const auto focused = m_library.focusedIndex();
    if (!focused) return loadVisible();
    const auto middle = static_cast<double>(*focused) * kelvara::step + side / 2.0;
    m_target = constrained(middle - width() / 2.0);
    if (motion == Motion::atOnce || !isVisible() || !allowsMotion(*this)) return setOffset(m_target);
    // From far away it comes in from the near side rather than rushing past everything.
    const auto far = static_cast<double>(width());
    m_offset = std::clamp(m_offset, m_target - far, m_target + far);
    if (!m_frames.isActive()) {
        m_lastFrame.start();
        m_frames.start();
    }
}

void FilmstripView::setOffset(double offset) {
    m_offset = constrained(offset);
    if (std::abs(m_offset - m_target) < 0.5) m_frames.stop();
    const auto range = visibleRange();
    if (!(range == m_loadedRange)) loadVisible();
    update();
}

void FilmstripView::step() {
    const auto seconds = static_cast<double>(m_lastFrame.restart()) / 1000;
    const auto rest = std::exp(-easingPerSecond * std::max(seconds, 0.001));
    const auto next = m_target + (m_offset - m_target) * rest;
    setOffset(std::abs(next - m_target) < 0.5 ? m_target : next);
}

void FilmstripView::loadVisible() {
    const auto range = isVisible() ? visibleRange() : IndexRange{};
    m_loadedRange = range;
    std::vector<FileURL> urls;
    const auto& items = m_library.visibleItems();
    if (range.begin < range.end) {
        const auto end = std::min(range.end + extraLoaded, items.size());
        for (auto index = range.begin - std::min(range.begin, extraLoaded); index < end; ++index) {
            urls.push_back(items[index].url);
        }
    }
    m_thumbnails.show(urls, static_cast<int>(std::ceil(side * devicePixelRatioF())));
}

ThumbnailCellState FilmstripView::state(std::size_t index) const {
    const auto& item = m_library.visibleItems()[index];
    const auto& thumbnail = m_thumbnails[item.url];
    ThumbnailCellState state;
    state.style = ThumbnailCellState::Style::filmstrip;
    state.picture = thumbnail.picture;
    state.kind = item.kind();
    if (!thumbnail.picture.isNull()) {
        state.content = ThumbnailCellState::Content::picture;
    } else if (thumbnail.isFinal && state.kind != MediaKind::video) {
        state.content = ThumbnailCellState::Content::unreadable;
    }
    state.rating = m_library.rating(item.url);
    state.isEdited = m_thumbnails.isEdited(item.url);
    state.isMarked = m_library.isChecked(item.url);
    state.isFocused = item.url == m_library.focusedID();
    state.isHovered = m_hovered == index;
    return state;
}

void FilmstripView::paintEvent(QPaintEvent*) {
    QPainter painter{this};
    const auto& theme = Theme::current();
    painter.fillRect(rect(), theme.window);
    painter.fillRect(0, 0, width(), 1, theme.separator);
    m_painter.begin();
    const auto range = visibleRange();
    for (auto index = range.begin; index < range.end; ++index) {
        m_painter.paint(painter, cellRect(index), m_library.visibleItems()[index].url, state(index));
    }
    if (const auto focused = m_library.focusedIndex();
        focused && *focused >= range.begin && *focused < range.end) {
        ThumbnailCell::paintFocusRing(painter, cellRect(*focused));
    }
    if (m_painter.end(range.end - range.begin)) {
        QTimer::singleShot(0, this, [this] { update(); });
    }
}

void FilmstripView::resizeEvent(QResizeEvent*) { showFocused(Motion::atOnce); }

void FilmstripView::showEvent(QShowEvent*) {
    m_loadedRange = {};
    showFocused(Motion::atOnce);
    loadVisible();
}

void FilmstripView::hideEvent(QHideEvent*) {
    m_frames.stop();
    m_loadedRange = {};
    m_thumbnails.show({}, 0);
}

void FilmstripView::wheelEvent(QWheelEvent* event) {
    const auto pixels = event->pixelDelta();
    const auto notches = event->angleDelta();
    const auto delta = pixels.isNull() ? (notches.y() + notches.x()) / wheelNotch * kelvara::step
                                       : static_cast<double>(pixels.x() + pixels.y());
    m_frames.stop();
    m_target = constrained(m_offset - delta);
    setOffset(m_target);
    event->accept();
}

void FilmstripView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton && event->button() != Qt::RightButton)
        return QWidget::mousePressEvent(event);
    m_press.reset();
    const auto point = event->position().toPoint();
    const auto index = indexAt(point);
    if (!index) return;
    const auto url = m_library.visibleItems()[*index].url;
    if (event->button() == Qt::LeftButton) m_press = Press{point, url};
    m_library.setFocusedID(url);
}

void FilmstripView::mouseMoveEvent(QMouseEvent* event) {
    const auto point = event->position().toPoint();
    setHovered(indexAt(point));
    if (!m_press || !event->buttons().testFlag(Qt::LeftButton)) return;
    if ((point - m_press->point).manhattanLength() < QApplication::startDragDistance()) return;
    startDrag(std::exchange(m_press, std::nullopt)->url);
}

void FilmstripView::mouseReleaseEvent(QMouseEvent*) { m_press.reset(); }

void FilmstripView::startDrag(const FileURL& url) {
    const auto index = m_library.visibleIndex(url);
    if (!index) return;
    const auto item = m_library.visibleItems()[*index];
    dragPhotos(*this, m_library.actionTargets(item), m_thumbnails[url].picture);
}

void FilmstripView::leaveEvent(QEvent*) { setHovered(std::nullopt); }

void FilmstripView::setHovered(std::optional<std::size_t> index) {
    if (index == m_hovered) return;
    m_hovered = index;
    update();
}

void FilmstripView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        m_painter.clear();
        update();
    }
}

bool FilmstripView::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QWidget::event(event);
    const auto& help = static_cast<QHelpEvent&>(*event);
    if (const auto index = indexAt(help.pos())) {
        const auto& url = m_library.visibleItems()[*index].url;
        const auto words = ThumbnailCell::help(nameText(url), m_thumbnails.isEdited(url));
        QToolTip::showText(help.globalPos(), words.toHtmlEscaped(), this, cellRect(*index));
    }
    return true;
}

} // namespace kelvara
