#include "library/ItemFilter.h"

#include "text/NameOrder.h"

namespace kelvara {

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool ItemFilter::isOn() const {
    return !hiddenExtensions.empty() || rating || showsOnlyChecked || !searchText.empty();
}

std::vector<bool> ItemFilter::acceptedShots(const LibraryIndex& index) const {
    std::vector<bool> isAccepted(index.shots().size());
    for (std::size_t shot = 0; shot < isAccepted.size(); ++shot) {
        const auto found = ratings.find(index.shots()[shot].stemKey);
        isAccepted[shot] = rating->accepts(found == ratings.end() ? Rating{} : found->second);
    }
    return isAccepted;
}

std::vector<std::uint32_t> ItemFilter::apply(std::span<const std::uint32_t> sortedPositions,
                                             const LibraryIndex& index) const {
    // Each condition is worked out once, in the order of memory; the pass over the items in their sorted
    // order, which jumps about, then only looks up bits.
    std::vector<bool> isHidden;
    for (const auto& extension : index.extensions()) isHidden.push_back(hiddenExtensions.contains(extension));
    const auto isAcceptedShot = rating ? acceptedShots(index) : std::vector<bool>{};
    const auto wanted = foldedForSearch(trimmed(searchText));

    const auto passes = [&](std::uint32_t position) {
        return !isHidden[index.extensionID(position)] && (!showsOnlyChecked || isChecked[position]) &&
               (!rating || isAcceptedShot[index.shotID(position)]) &&
               (wanted.empty() || index.foldedName(position).find(wanted) != std::string_view::npos);
    };
    std::vector<std::uint32_t> visible;
    visible.reserve(sortedPositions.size());
    for (const auto position : sortedPositions) {
        if (passes(position)) visible.push_back(position);
    }
    return visible;
}

} // namespace kelvara
