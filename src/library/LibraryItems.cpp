// LibraryViewModel: scanning the source, and the order and filters of what it holds.

#include "library/ItemFilter.h"
#include "library/ItemOrder.h"
#include "library/LibraryViewModel.h"
#include "library/PreferenceKeys.h"
#include "platform/Preferences.h"
#include "services/FileScanner.h"
#include "services/XMPService.h"

#include <limits>

namespace kelvara {

namespace {
constexpr auto notVisible = std::numeric_limits<std::uint32_t>::max();
} // namespace

struct LibraryViewModel::ScanResult {
    Listing listing;
    std::unordered_map<FileURL, Rating> ratings;
};

void LibraryViewModel::rescan() {
    const Change change{*this};
    m_scan.cancel();
    if (m_runningSaves == 0) m_savedRatings.clear(); // this scan will find them
    m_removedDuringScan.clear();
    resetForScan();
    assign(Property::isScanning, m_isScanning, !m_sourceURL.isEmpty());
    if (m_sourceURL.isEmpty()) {
        m_services.emptyImageCaches();
        return;
    }
    auto scan = [scanner = FileScanner{m_services.files, m_services.collationLocale},
                 &sidecars = m_services.sidecars, locale = m_services.collationLocale,
                 source = m_sourceURL](const std::stop_token& stop) -> ScanResult {
        auto collected = scanner.collect(source, stop);
        if (!collected) return {}; // cancelled, so nobody waits for it
        auto found = std::make_shared<const std::vector<PhotoItem>>(std::move(collected).value());
        auto index = std::make_shared<const LibraryIndex>(*found, locale);
        std::vector<FileURL> sidecarURLs;
        for (const auto& shot : index->shots()) {
            if (shot.hasRaw) sidecarURLs.push_back(shot.stemKey);
        }
        auto ratingsFound = sidecars.readRatings(sidecarURLs, stop);
        return {{std::move(found), std::move(index)}, std::move(ratingsFound)};
    };
    m_scan.start(std::move(scan), [this](ScanResult result) { publish(std::move(result)); });
}

void LibraryViewModel::resetForScan() {
    const Change change{*this};
    assign(Property::scanError, m_scanError, {});
    assign(Property::viewMode, m_viewMode, ViewMode::grid);
    assign(Property::showsOnlyChecked, m_showsOnlyChecked, false);
    assign(Property::ratingFilter, m_ratingFilter, {});
    assign(Property::ratings, m_ratings, {});
    assign(Property::focusedID, m_focusedID, {});
    cancelDeletion();
    if (!m_checked.empty()) didChange(Property::checkedIDs);
    setItems({std::make_shared<const std::vector<PhotoItem>>(), std::make_shared<const LibraryIndex>()});
}

void LibraryViewModel::publish(ScanResult result) {
    const Change change{*this};
    if (!m_removedDuringScan.empty()) {
        result.listing =
            listingWithout(*result.listing.items, m_removedDuringScan, m_services.collationLocale);
        m_removedDuringScan.clear();
    }
    for (const auto& shot : result.listing.index->shots()) {
        const auto saved = shot.hasRaw ? m_savedRatings.find(shot.stemKey) : m_savedRatings.end();
        if (saved != m_savedRatings.end()) result.ratings[shot.stemKey] = saved->second;
    }
    if (m_runningSaves == 0) m_savedRatings.clear();
    assign(Property::ratings, m_ratings, std::move(result.ratings));
    setItems(result.listing);
    assign(Property::isScanning, m_isScanning, false);
}

void LibraryViewModel::setItems(const Listing& listing, std::span<const FileURL> marked) {
    const Change change{*this};
    m_items = listing.items;
    m_index = listing.index;
    m_checked = CheckedItems{m_items};
    for (const auto& url : marked) {
        if (const auto position = m_index->find(url, *m_items)) m_checked.setChecked(*position, true);
    }
    didChange(Property::items);
    updateSortedItems();
}

void LibraryViewModel::updateSortedItems() {
    m_sortedPositions = sorted(*m_index, m_items->size(), m_sortOrder, m_sortsAscending);
    updateVisibleItems();
}

void LibraryViewModel::updateVisibleItems() {
    const Change change{*this};
    const ItemFilter filter{.hiddenExtensions = m_hiddenExtensions,
                            .showsOnlyChecked = m_showsOnlyChecked,
                            .isChecked = m_checked.flags(),
                            .rating = m_ratingFilter,
                            .ratings = m_ratings,
                            .searchText = m_searchText};
    m_visibleItems =
        ItemList{m_items, filter.isOn() ? filter.apply(m_sortedPositions, *m_index) : m_sortedPositions};
    m_visibleIndexes.assign(m_items->size(), notVisible);
    for (std::uint32_t i = 0; i < m_visibleItems.size(); ++i)
        m_visibleIndexes[m_visibleItems.positions()[i]] = i;
    didChange(Property::visibleItems);
    repairFocus();
}

void LibraryViewModel::repairFocus() {
    if (m_visibleItems.isEmpty()) {
        assign(Property::focusedID, m_focusedID, {});
        setViewMode(ViewMode::grid);
        return;
    }
    if (visibleIndex(m_focusedID)) return;
    const auto position = m_index->find(m_focusedID, *m_items);
    if (!position) {
        assign(Property::focusedID, m_focusedID, FileURL{m_visibleItems[0].url});
        return;
    }
    // The item is there but filtered out: the nearest one after it that is left, else the nearest before it.
    std::uint32_t nearest = notVisible;
    bool isPast = false;
    for (const auto candidate : m_sortedPositions) {
        isPast = isPast || candidate == *position;
        if (m_visibleIndexes[candidate] == notVisible) continue;
        nearest = candidate;
        if (isPast) break;
    }
    assign(Property::focusedID, m_focusedID, FileURL{(*m_items)[nearest].url});
}

std::optional<std::size_t> LibraryViewModel::visibleIndex(const FileURL& id) const {
    const auto position = m_index->find(id, *m_items);
    if (!position || m_visibleIndexes[*position] == notVisible) return std::nullopt;
    return m_visibleIndexes[*position];
}

void LibraryViewModel::setSortOrder(SortOrder order) {
    const Change change{*this};
    if (!assign(Property::sortOrder, m_sortOrder, order)) return;
    m_services.preferences.setText(PreferenceKeys::sortOrder, std::string{rawValue(order)});
    updateSortedItems();
}

void LibraryViewModel::setSortsAscending(bool ascending) {
    const Change change{*this};
    if (!assign(Property::sortsAscending, m_sortsAscending, ascending)) return;
    m_services.preferences.setBoolean(PreferenceKeys::sortsAscending, ascending);
    updateSortedItems();
}

void LibraryViewModel::setHiddenExtensions(std::set<std::string> extensions) {
    const Change change{*this};
    if (!assign(Property::hiddenExtensions, m_hiddenExtensions, std::move(extensions))) return;
    m_services.preferences.setTexts(PreferenceKeys::hiddenExtensions,
                                    {m_hiddenExtensions.begin(), m_hiddenExtensions.end()});
    updateVisibleItems();
}

void LibraryViewModel::toggleExtension(const std::string& extension) {
    auto extensions = m_hiddenExtensions;
    if (extensions.erase(extension) == 0) extensions.insert(extension);
    setHiddenExtensions(std::move(extensions));
}

void LibraryViewModel::setSearchText(const std::string& text) {
    const Change change{*this};
    if (assign(Property::searchText, m_searchText, text)) updateVisibleItems();
}

void LibraryViewModel::setRatingFilter(const std::optional<RatingFilter>& filter) {
    const Change change{*this};
    if (assign(Property::ratingFilter, m_ratingFilter, filter)) updateVisibleItems();
}

void LibraryViewModel::setShowsOnlyChecked(bool onlyChecked) {
    const Change change{*this};
    if (assign(Property::showsOnlyChecked, m_showsOnlyChecked, onlyChecked)) updateVisibleItems();
}

} // namespace kelvara
