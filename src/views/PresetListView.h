#pragma once

#include "library/LibraryViewModel.h"
#include "presets/PresetStore.h"
#include "views/PresetListLayout.h"
#include "views/PresetPictures.h"
#include "views/PresetTile.h"

#include <QAbstractScrollArea>
#include <QAccessible>

#include <optional>
#include <string>
#include <vector>

class QHelpEvent;

namespace kelvara {

/// All presets as tiles that show the focused photo through them, in sections that open and close. Pointing
/// at one previews it, a click chooses it. Nothing but what is visible is drawn.
class PresetListView : public QAbstractScrollArea {
    Q_OBJECT

public:
    /// Everything outlives it.
    PresetListView(LibraryViewModel& library, PresetStore& presets, ThumbnailService& thumbnails,
                   PresetTileService& tiles, QWidget* parent = nullptr);

    /// Whether a visible tile's picture is still to come.
    [[nodiscard]] bool isLoading() const { return m_pictures.isLoading(); }
    /// The pictures in memory are no longer right, as when the screen's colours changed.
    void reloadPictures() { m_pictures.reload(); }
    /// Opens the preset's category and scrolls there.
    void reveal(const std::string& presetID);

    // What assistive tools know of the entries.

    [[nodiscard]] const PresetListLayout& listLayout() const { return m_layout; }
    [[nodiscard]] QWidget& canvas() { return *viewport(); }
    /// On the canvas, also of one that is scrolled away.
    [[nodiscard]] QRect entryRect(std::size_t index) const;
    [[nodiscard]] std::optional<std::size_t> indexAt(const QPoint& canvasPoint) const;
    [[nodiscard]] std::optional<std::size_t> currentIndex() const;
    [[nodiscard]] QString title(std::size_t index) const;
    [[nodiscard]] QString description(std::size_t index) const;
    [[nodiscard]] bool isHeader(std::size_t index) const;
    /// Whether it is the chosen preset, or an open section.
    [[nodiscard]] bool isOn(std::size_t index) const;
    /// Chooses the preset, or no more; opens or closes the section.
    void press(std::size_t index);

signals:
    void importRequested();
    /// The user wants this preset in the Trash.
    void removalRequested(const std::string& presetID);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    using Entry = PresetListLayout::Entry;
    /// An entry, wherever it moves.
    struct Place {
        Entry::Kind kind = Entry::Kind::none;
        std::string category;
        std::string preset;
        friend bool operator==(const Place&, const Place&) = default;
    };

    void observe();
    [[nodiscard]] const Entry& entry(std::size_t index) const { return m_layout.entries()[index]; }
    [[nodiscard]] const PresetCategory& category(std::size_t index) const;
    /// Null for "none".
    [[nodiscard]] PresetPictures::Preset preset(std::size_t index) const;
    /// Empty for "none".
    [[nodiscard]] std::string presetID(std::size_t index) const;
    [[nodiscard]] Place place(std::size_t index) const;
    [[nodiscard]] std::optional<std::size_t> index(const Place& place) const;
    [[nodiscard]] std::optional<std::size_t> indexOfPreset(const std::string& presetID) const;

    void relayout();
    void loadVisible();
    void showEntry(std::size_t index);
    void followSelection();
    [[nodiscard]] int top() const;
    [[nodiscard]] PresetTileState tileState(std::size_t index) const;
    void paintEntry(QPainter& painter, std::size_t index);

    void hover(const QPoint& viewportPoint);
    void hoverWhatIsUnderPointer();
    void unhover();
    void setHovered(std::optional<std::size_t> index, bool isOnStar);
    [[nodiscard]] bool isOnStar(std::size_t index, const QPoint& viewportPoint) const;
    void move(PresetListLayout::Step step);
    bool foldOrUnfold(std::size_t index, bool expanded);
    void toggleFavourite(const std::string& presetID);
    bool showToolTip(QHelpEvent& event);

    LibraryViewModel& m_library;
    PresetStore& m_presets;
    PresetPictures m_pictures;
    PresetListLayout m_layout;
    std::vector<PresetCategory> m_categories; ///< What the layout was made for.
    std::optional<std::size_t> m_hovered;
    bool m_isStarHovered = false;
    Place m_current; ///< Where the keyboard is.
    bool m_isPressing = false;
    bool m_isShowingEntry = false;
    std::vector<Subscription> m_subscriptions;
};

/// Lets assistive tools see the entries of such views as lists. For the constructor, before anything that is
/// told to those tools, such as its name: they would keep the view they got then.
void makePresetListsAccessible();
/// That the entries are others, or where the keyboard is.
void tellAssistiveTools(PresetListView& view, QAccessible::Event event);

} // namespace kelvara
