#pragma once

#include "library/LibraryIndex.h"
#include "library/LibraryTypes.h"

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace kelvara {

/// The conditions under which the grid keeps an item; all must hold.
struct ItemFilter {
    const std::set<std::string>& hiddenExtensions; ///< Upper case.
    bool showsOnlyChecked = false;
    const std::vector<bool>& isChecked; ///< By item; not looked at unless only marked ones are shown.
    std::optional<RatingFilter> rating;
    const std::unordered_map<FileURL, Rating>& ratings; ///< By stem key; none is no stars.
    std::string_view searchText;                        ///< Spaces and tabs at both ends don't count.

    /// Whether any condition is set.
    [[nodiscard]] bool isOn() const;
    /// The `sortedPositions` that pass, in their order.
    [[nodiscard]] std::vector<std::uint32_t> apply(std::span<const std::uint32_t> sortedPositions,
                                                   const LibraryIndex& index) const;

private:
    /// By shot.
    [[nodiscard]] std::vector<bool> acceptedShots(const LibraryIndex& index) const;
};

/// `text` without spaces and tabs at both ends.
[[nodiscard]] std::string_view trimmed(std::string_view text);

} // namespace kelvara
