#pragma once

#include "library/LibraryViewModel.h"
#include "views/Controls.h"

#include <functional>

class QStackedWidget;

namespace kelvara {

class EmptyStateView;
class FilterBar;
class GridStatusBar;
class LibraryToolbar;
class Preferences;

/// The two ways to look at photos, made by whoever has the image services. The window owns the widgets.
struct PhotoCanvases {
    QWidget* grid = nullptr;
    std::function<void(double side)> setThumbnailSize;
    std::function<bool()> isGridLoading;
    QWidget* loupe = nullptr;
    std::function<bool()> isLoupeLoading;
};

/// Everything beside the sidebar: bars, and between them the grid, the single image, or why there is neither.
class LibraryContentView : public Panel {
    Q_OBJECT

public:
    LibraryContentView(LibraryViewModel& library, Preferences& preferences, PhotoCanvases canvases,
                       QWidget* parent = nullptr);

    /// Gives the keyboard to the photos.
    void focusPhotos();
    /// Whether photos are shown and nothing that is in sight is still on its way.
    [[nodiscard]] bool isSettled() const;

private:
    void refresh();

    LibraryViewModel& m_library;
    PhotoCanvases m_canvases;
    LibraryToolbar* m_toolbar;
    FilterBar* m_filterBar;
    EmptyStateView* m_empty;
    QStackedWidget* m_stack;
    GridStatusBar* m_statusBar;
    std::vector<Subscription> m_subscriptions;
};

} // namespace kelvara
