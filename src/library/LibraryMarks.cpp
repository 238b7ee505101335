// LibraryViewModel: marks and ratings, and what an action applies to.

#include "library/LibraryViewModel.h"
#include "services/XMPService.h"
#include "text/Localized.h"

#include <algorithm>
#include <unordered_set>

namespace kelvara {

void LibraryViewModel::toggleChecked(const FileURL& id) {
    const auto position = m_index->find(id, *m_items);
    if (!position) return;
    const Change change{*this};
    m_checked.setChecked(*position, !m_checked.isChecked(*position));
    didChange(Property::checkedIDs);
    if (m_showsOnlyChecked) updateVisibleItems();
}

void LibraryViewModel::markRange(const FileURL& target) {
    const auto targetIndex = visibleIndex(target);
    if (!targetIndex) return;
    const Change change{*this};
    const auto anchor = focusedIndex().value_or(*targetIndex);
    const auto [first, last] = std::minmax({*targetIndex, anchor});
    for (auto index = first; index <= last; ++index) {
        m_checked.setChecked(m_visibleItems.positions()[index], true);
    }
    didChange(Property::checkedIDs);
    if (m_showsOnlyChecked) updateVisibleItems();
    setFocusedID(target);
}

void LibraryViewModel::clearMarks() {
    if (m_checked.empty()) return;
    const Change change{*this};
    m_checked = CheckedItems{m_items};
    didChange(Property::checkedIDs);
    if (m_showsOnlyChecked) updateVisibleItems();
}

bool LibraryViewModel::isChecked(const FileURL& id) const {
    const auto position = m_index->find(id, *m_items);
    return position && m_checked.isChecked(*position);
}

Rating LibraryViewModel::rating(const FileURL& id) const {
    const auto found = m_ratings.find(id.stemKey());
    return found == m_ratings.end() ? Rating{} : found->second;
}

bool LibraryViewModel::keepsRatingInSidecar(const FileURL& id) const {
    const auto position = m_index->find(id, *m_items);
    return position && m_index->shot(*position).hasRaw;
}

void LibraryViewModel::setRating(Rating newRating, const FileURL& id) {
    if (rating(id) == newRating || willLoseSidecar(id)) return;
    const Change change{*this};
    m_ratings[id.stemKey()] = newRating;
    didChange(Property::ratings);
    // Before the filter moves the focus: `id` may be the focused ID itself.
    if (keepsRatingInSidecar(id)) saveRating(newRating, id);
    if (m_ratingFilter) updateVisibleItems();
}

void LibraryViewModel::saveRating(Rating newRating, const FileURL& id) {
    // Writes run one after the other in the order of the key presses, so the last rating is the one that
    // stays.
    m_savedRatings[id.stemKey()] = newRating;
    ++m_runningSaves;
    m_services.sidecarWrites.post([this, alive = std::weak_ptr{m_lifetime}, &sidecars = m_services.sidecars,
                                   &main = m_services.main, newRating, id] {
        const auto result = sidecars.setRating(newRating, id.stemKey());
        main.post([this, alive, newRating, id, result] {
            if (!alive.expired()) didSaveRating(newRating, id, result);
        });
    });
}

void LibraryViewModel::didSaveRating(Rating saved, const FileURL& id, const Result<void, XMPError>& result) {
    if (!result) {
        const auto found = m_savedRatings.find(id.stemKey());
        if (found != m_savedRatings.end() && found->second == saved) m_savedRatings.erase(found);
        assign(Property::ratingSaveError, m_ratingSaveError,
               localized("Couldn't save the rating for ") + std::string{id.name()} + ": " +
                   message(result.error()));
    }
    // A running scan may have read the sidecar before it was written.
    if (--m_runningSaves == 0 && !m_isScanning) m_savedRatings.clear();
}

std::vector<PhotoItem> LibraryViewModel::pairedFiles(std::span<const PhotoItem> of) const {
    std::unordered_set<FileURL> given;
    std::unordered_set<FileURL> stemKeys;
    for (const auto& item : of) {
        given.insert(item.url);
        stemKeys.insert(item.url.stemKey());
    }
    std::vector<PhotoItem> paired;
    for (std::size_t i = 0; i < m_items->size(); ++i) {
        const auto& item = (*m_items)[i];
        if (!given.contains(item.url) && stemKeys.contains(m_index->shot(i).stemKey)) paired.push_back(item);
    }
    return paired;
}

std::vector<PhotoItem> LibraryViewModel::actionTargets(const PhotoItem& item) const {
    if (m_checked.size() < 2 || !isChecked(item.url)) return {item};
    std::vector<PhotoItem> targets;
    for (std::size_t position = 0; position < m_items->size(); ++position) {
        if (m_checked.isChecked(position)) targets.push_back((*m_items)[position]);
    }
    return targets;
}

} // namespace kelvara
