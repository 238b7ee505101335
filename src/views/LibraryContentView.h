#pragma once

#include "library/LibraryViewModel.h"
#include "views/Controls.h"
#include "views/Inspector.h"
#include "views/ThumbnailSources.h"

#include <functional>
#include <optional>

class QSplitter;
class QStackedWidget;

namespace kelvara {

class EmptyStateView;
class FilterBar;
class GridStatusBar;
class LibraryToolbar;
class Preferences;
class ShareMenuItems;

/// The two ways to look at photos, made by whoever has the image services. The window owns the widgets.
struct PhotoCanvases {
    QWidget* grid = nullptr;
    std::function<void(double side)> setThumbnailSize;
    std::function<bool()> isGridLoading;
    QWidget* loupe = nullptr;
    std::function<bool()> isLoupeLoading;
    std::function<void()> togglePresetBefore = [] {}; ///< In the loupe.
    Inspector::Contents inspector{};
    std::function<bool()> isInspectorLoading = [] { return false; };
    std::optional<ThumbnailSources> thumbnails{}; ///< For previews in sheets, which do without them.
};

/// Everything beside the sidebar: bars, between them the grid, the single image, or why there is neither, and
/// the inspector.
class LibraryContentView : public Panel {
    Q_OBJECT

public:
    /// The references outlive it.
    LibraryContentView(LibraryViewModel& library, Preferences& preferences, const ShareMenuItems& sharing,
                       PhotoCanvases canvases, QWidget* parent = nullptr);

    /// Gives the keyboard to the photos.
    void focusPhotos();
    void togglePresetBefore() { m_canvases.togglePresetBefore(); }
    /// Whether nothing that belongs in sight is still on its way.
    [[nodiscard]] bool isSettled() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void refresh();
    void restoreInspectorWidth();

    LibraryViewModel& m_library;
    Preferences& m_preferences;
    PhotoCanvases m_canvases;
    LibraryToolbar* m_toolbar;
    FilterBar* m_filterBar;
    EmptyStateView* m_empty;
    QStackedWidget* m_stack;
    QSplitter* m_splitter;
    Inspector* m_inspector;
    GridStatusBar* m_statusBar;
    std::vector<Subscription> m_subscriptions;
};

} // namespace kelvara
