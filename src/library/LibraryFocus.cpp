// LibraryViewModel: the focused item, moving it, and the items around it.

#include "library/FocusNavigation.h"
#include "library/LibraryViewModel.h"

#include <algorithm>

namespace kelvara {

const PhotoItem* LibraryViewModel::focusedItem() const {
    const auto index = focusedIndex();
    return index ? &m_visibleItems[*index] : nullptr;
}

std::optional<std::size_t> LibraryViewModel::focusedIndex() const { return visibleIndex(m_focusedID); }

void LibraryViewModel::setFocusedID(const FileURL& id) { assign(Property::focusedID, m_focusedID, id); }

void LibraryViewModel::moveFocus(MoveDirection direction) {
    if (m_visibleItems.isEmpty()) return;
    const auto index = focusedIndex();
    if (!index) {
        setFocusedID(m_visibleItems[0].url);
        return;
    }
    const auto columns =
        m_viewMode == ViewMode::grid ? static_cast<std::size_t>(std::max(m_columnCount, 1)) : 1;
    if (const auto target = focusTarget(*index, m_visibleItems.size(), columns, direction)) {
        setFocusedID(m_visibleItems[*target].url);
    }
}

void LibraryViewModel::toggleViewMode() {
    if (focusedItem() == nullptr) return;
    setViewMode(m_viewMode == ViewMode::grid ? ViewMode::loupe : ViewMode::grid);
}

void LibraryViewModel::showGrid() { setViewMode(ViewMode::grid); }

IndexRange LibraryViewModel::filmstripItems(std::size_t radius, std::size_t extraBefore,
                                            std::size_t extraAfter) const {
    const auto centre = focusedIndex();
    if (!centre) return {};
    const auto before = radius + extraBefore;
    const auto after = radius + extraAfter;
    return {*centre > before ? *centre - before : 0, std::min(*centre + after + 1, m_visibleItems.size())};
}

std::vector<PhotoItem> LibraryViewModel::neighbours(const FileURL& of, std::size_t radius) const {
    std::vector<PhotoItem> items;
    const auto centre = visibleIndex(of);
    if (!centre) return items;
    for (const auto index : neighbourIndices(*centre, m_visibleItems.size(), radius)) {
        items.push_back(m_visibleItems[index]);
    }
    return items;
}

std::vector<PhotoItem> LibraryViewModel::prefetchCandidates(IndexRange visible, std::size_t rowsAhead) const {
    const auto ahead = rowsAhead * static_cast<std::size_t>(std::max(m_columnCount, 1));
    const auto end = std::min(visible.end + ahead, m_visibleItems.size());
    std::vector<PhotoItem> items;
    for (auto index = visible.end; index < end; ++index) items.push_back(m_visibleItems[index]);
    return items;
}

} // namespace kelvara
