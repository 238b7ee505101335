#pragma once

#include "library/LibraryViewModel.h"
#include "views/Controls.h"

#include <QList>
#include <QTimer>

class QHBoxLayout;
class QMenu;

namespace kelvara {

class SearchField;

/// Above the grid: what is shown of the source, and in which order.
class FilterBar : public Panel {
    Q_OBJECT

public:
    explicit FilterBar(LibraryViewModel& library, QWidget* parent = nullptr);

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void makeChips();
    void makeMenus();
    void refreshMarkedChip();
    void refreshRatingChip();
    void refreshTypes();
    void refreshSort();
    void fillRatingMenu();
    void fillFilterMenu();
    void fillSortMenu();
    void makeRoom();

    LibraryViewModel& m_library;
    SearchField* m_search;
    QToolButton* m_marked;
    QToolButton* m_rating;
    QWidget* m_types; ///< Chips of the file types, as far as there is room for them.
    QHBoxLayout* m_typeRow;
    std::vector<std::string> m_shownTypes;
    QList<QToolButton*> m_typeChips;
    QToolButton* m_filterButton;
    QToolButton* m_sortButton;
    QMenu* m_ratingMenu;
    QMenu* m_filterMenu;
    QMenu* m_sortMenu;
    QTimer m_roomIsDue;
    std::vector<Subscription> m_subscriptions;
};

} // namespace kelvara
