#pragma once

#include <QString>

#include <optional>

namespace kelvara {

class LibraryViewModel;

/// Why the content area shows no photos. The order is the precedence.
enum class EmptyCause {
    noSource,
    scanError,
    scanning,
    emptyFolder,
    noMatches,         ///< No file name contains the search text.
    noMarkedFiles,     ///< Only marked files are shown, and none is marked.
    noMatchingRatings, ///< No file passes the star filter.
    allFilesHidden,    ///< Every file type is filtered out.
    combinedFilters,   ///< Each filter leaves something, all together nothing.
};

/// What the decision needs to know of the library.
struct EmptyFacts {
    bool hasSource = false;
    bool isScanning = false;
    bool hasScanError = false;
    bool hasItems = false;
    bool hasVisibleItems = false;
    bool isSearching = false;
    bool matchesSomeName = false; ///< The search by itself.
    bool showsOnlyMarked = false;
    bool hasMarks = false;
    bool filtersRatings = false;
    bool matchesSomeRating = false; ///< The star filter by itself.
    bool hidesEveryType = false;
};
[[nodiscard]] EmptyFacts emptyFacts(const LibraryViewModel& library);

/// Empty while there are photos to show.
[[nodiscard]] std::optional<EmptyCause> emptyCause(const EmptyFacts& facts);

struct EmptyText {
    QString title;
    QString symbol;
    QString description;
    QString button; ///< Empty for no button.
};
[[nodiscard]] EmptyText emptyText(EmptyCause cause, const LibraryViewModel& library);

/// What the button does: removes the cause.
void removeCause(EmptyCause cause, LibraryViewModel& library);

/// What people call the current source: the card's name, or the folder's. Empty without a source.
[[nodiscard]] QString sourceTitle(const LibraryViewModel& library);

} // namespace kelvara
