#include "views/LibraryContentView.h"

#include "library/PreferenceKeys.h"
#include "platform/Preferences.h"
#include "views/EmptyStateView.h"
#include "views/FilterBar.h"
#include "views/GridStatusBar.h"
#include "views/LibraryToolbar.h"

#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace kelvara {

namespace {
constexpr int usualInspectorWidth = 296;
constexpr int narrowestPhotos = 240;
} // namespace

LibraryContentView::LibraryContentView(LibraryViewModel& library, Preferences& preferences,
                                       const ShareMenuItems& sharing, PhotoCanvases canvases, QWidget* parent)
    : Panel{&Theme::canvas, parent}, m_library{library}, m_preferences{preferences}, m_canvases{std::move(
                                                                                         canvases)} {
    m_toolbar = new LibraryToolbar{library, preferences, sharing, this};
    m_filterBar = new FilterBar{library, this};
    m_empty = new EmptyStateView{library, this};
    m_statusBar = new GridStatusBar{library, this};
    m_stack = new QStackedWidget{this};
    m_stack->addWidget(m_canvases.grid);
    m_stack->addWidget(m_canvases.loupe);
    m_stack->addWidget(m_empty);

    auto* photos = new QWidget{this};
    photos->setMinimumWidth(narrowestPhotos);
    auto* middle = new QVBoxLayout{photos};
    middle->setContentsMargins(0, 0, 0, 0);
    middle->setSpacing(0);
    middle->addWidget(m_filterBar);
    middle->addWidget(m_stack, 1);
    middle->addWidget(m_statusBar);

    m_inspector = new Inspector{library, m_canvases.inspector, this};
    m_splitter = new QSplitter{Qt::Horizontal, this};
    m_splitter->setHandleWidth(1);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->addWidget(photos);
    m_splitter->addWidget(m_inspector);
    m_splitter->setStretchFactor(0, 1);
    m_splitter->setStretchFactor(1, 0);
    connect(m_splitter, &QSplitter::splitterMoved, this,
            [this] { m_preferences.setInteger(PreferenceKeys::inspectorWidth, m_inspector->width()); });

    auto* column = new QVBoxLayout{this};
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_toolbar);
    column->addWidget(m_splitter, 1);

    m_canvases.setThumbnailSize(m_toolbar->thumbnailSize());
    connect(m_toolbar, &LibraryToolbar::thumbnailSizeChanged, this, m_canvases.setThumbnailSize);
    connect(m_empty, &EmptyStateView::causeChanged, this, &LibraryContentView::refresh);

    using P = LibraryProperty;
    m_subscriptions.push_back(m_library.observe({P::viewMode}, [this](const auto&) { refresh(); }));
    m_subscriptions.push_back(
        m_library.observe({P::keyFocusRequest}, [this](const auto&) { focusPhotos(); }));
    m_subscriptions.push_back(m_library.observe(
        {P::showsInspector}, [this](const auto&) { m_inspector->setVisible(m_library.showsInspector()); }));
    m_inspector->setVisible(m_library.showsInspector());
    refresh();
}

void LibraryContentView::resizeEvent(QResizeEvent* event) {
    Panel::resizeEvent(event);
    restoreInspectorWidth(); // what a narrow window took from it
}

void LibraryContentView::restoreInspectorWidth() {
    const auto width =
        static_cast<int>(m_preferences.integer(PreferenceKeys::inspectorWidth).value_or(usualInspectorWidth));
    m_splitter->setSizes({std::max(this->width() - width, narrowestPhotos), width});
}

void LibraryContentView::refresh() {
    const auto cause = m_empty->cause();
    const auto isGrid = m_library.viewMode() == ViewMode::grid;
    auto* const previous = m_stack->currentWidget();
    auto* const next = cause ? m_empty : isGrid ? m_canvases.grid : m_canvases.loupe;
    const auto hadFocus = previous->isAncestorOf(window()->focusWidget()) || previous->hasFocus();
    m_stack->setCurrentWidget(next);
    // Without files there is nothing to filter.
    const auto hasFiles = !cause || *cause > EmptyCause::emptyFolder || *cause == EmptyCause::scanning;
    m_toolbar->setHairlines(isGrid && hasFiles ? Qt::Edges{} : Qt::Edges{Qt::BottomEdge});
    m_filterBar->setVisible(isGrid && hasFiles);
    m_statusBar->setVisible(isGrid && hasFiles);
    if (hadFocus) focusPhotos();
}

void LibraryContentView::focusPhotos() { m_stack->currentWidget()->setFocus(Qt::OtherFocusReason); }

bool LibraryContentView::isSettled() const {
    if (m_library.isScanning()) return false;
    if (m_empty->cause()) return true;
    if (m_library.showsInspector() && m_canvases.isInspectorLoading()) return false;
    return !(m_library.viewMode() == ViewMode::grid ? m_canvases.isGridLoading()
                                                    : m_canvases.isLoupeLoading());
}

} // namespace kelvara
