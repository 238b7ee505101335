#include "views/EmptyState.h"

#include "library/ItemFilter.h"
#include "library/LibraryViewModel.h"
#include "text/NameOrder.h"
#include "views/Text.h"

#include <QCoreApplication>

#include <algorithm>

namespace kelvara {

namespace {

struct EmptyStateTexts {
    Q_DECLARE_TR_FUNCTIONS(EmptyState)
};
QString tr(const char* source) { return EmptyStateTexts::tr(source); }

bool matchesSomeName(const LibraryViewModel& library, std::string_view search) {
    const auto wanted = foldedForSearch(search);
    return std::any_of(library.items().begin(), library.items().end(), [&wanted](const PhotoItem& item) {
        return foldedForSearch(item.url.name()).find(wanted) != std::string::npos;
    });
}

bool matchesSomeRating(const LibraryViewModel& library) {
    return std::any_of(library.items().begin(), library.items().end(), [&library](const PhotoItem& item) {
        return library.ratingFilter()->accepts(library.rating(item.url));
    });
}

bool hidesEveryType(const LibraryViewModel& library) {
    return std::all_of(library.extensions().begin(), library.extensions().end(),
                       [&](const auto& extension) { return library.hiddenExtensions().contains(extension); });
}

bool hidesSomeType(const LibraryViewModel& library) {
    return std::any_of(library.extensions().begin(), library.extensions().end(),
                       [&](const auto& extension) { return library.hiddenExtensions().contains(extension); });
}

} // namespace

EmptyFacts emptyFacts(const LibraryViewModel& library) {
    EmptyFacts facts{.hasSource = !library.sourceURL().isEmpty(),
                     .isScanning = library.isScanning(),
                     .hasScanError = !library.scanError().empty(),
                     .hasItems = !library.items().empty(),
                     .hasVisibleItems = !library.visibleItems().isEmpty()};
    if (!facts.hasItems || facts.hasVisibleItems) return facts;
    const auto search = trimmed(library.searchText());
    facts.isSearching = !search.empty();
    facts.showsOnlyMarked = library.showsOnlyChecked();
    facts.hasMarks = !library.checkedIDs().empty();
    facts.filtersRatings = library.ratingFilter().has_value();
    facts.hidesEveryType = hidesEveryType(library);
    // A filter that is on alone has emptied the grid by itself: nothing needs to be searched again.
    const int others = int{facts.showsOnlyMarked} + int{hidesSomeType(library)};
    facts.matchesSomeName =
        facts.isSearching && others + int{facts.filtersRatings} > 0 && matchesSomeName(library, search);
    facts.matchesSomeRating =
        facts.filtersRatings && others + int{facts.isSearching} > 0 && matchesSomeRating(library);
    return facts;
}

std::optional<EmptyCause> emptyCause(const EmptyFacts& facts) {
    if (!facts.hasSource) return EmptyCause::noSource;
    if (facts.hasScanError) return EmptyCause::scanError;
    if (facts.isScanning && !facts.hasItems) return EmptyCause::scanning;
    if (!facts.hasItems) return EmptyCause::emptyFolder;
    if (facts.hasVisibleItems) return std::nullopt;
    if (facts.isSearching && !facts.matchesSomeName) return EmptyCause::noMatches;
    if (facts.showsOnlyMarked && !facts.hasMarks) return EmptyCause::noMarkedFiles;
    if (facts.filtersRatings && !facts.matchesSomeRating) return EmptyCause::noMatchingRatings;
    if (facts.hidesEveryType) return EmptyCause::allFilesHidden;
    return EmptyCause::combinedFilters;
}

EmptyText emptyText(EmptyCause cause, const LibraryViewModel& library) {
    switch (cause) {
    case EmptyCause::noSource:
        return {tr("No Source Selected"), QStringLiteral("sdcard"),
                tr("Insert an SD card or choose a folder to start previewing."), tr("Choose Folder…")};
    case EmptyCause::scanError:
        return {tr("Couldn't Read Folder"), QStringLiteral("exclamationmark.triangle"),
                text(library.scanError()), tr("Try Again")};
    case EmptyCause::scanning:
        return {tr("Scanning “%1”…").arg(sourceTitle(library)), {}, {}, {}};
    case EmptyCause::emptyFolder:
        return {tr("No Photos or Videos"), QStringLiteral("photo"),
                tr("This folder has no RAW, JPEG, HEIF or video files."), tr("Choose Folder…")};
    case EmptyCause::noMatches:
        return {tr("No Matches"), QStringLiteral("magnifyingglass"),
                tr("No file names contain “%1”.").arg(text(trimmed(library.searchText()))),
                tr("Clear Search")};
    case EmptyCause::noMarkedFiles:
        return {tr("No Marked Files"), QStringLiteral("checkmark.circle"),
                tr("Press Return or S on a photo to mark it."), tr("Show All Files")};
    case EmptyCause::noMatchingRatings:
        return {tr("No Matching Ratings"), QStringLiteral("star"), tr("No files match the star filter."),
                tr("Any Rating")};
    case EmptyCause::allFilesHidden:
        return {tr("All Files Hidden"), QStringLiteral("line.3.horizontal.decrease.circle"),
                tr("Every file type is filtered out."), tr("Show All")};
    case EmptyCause::combinedFilters:
        return {tr("No Matches"), QStringLiteral("line.3.horizontal.decrease.circle"),
                tr("No files match all filters together."), tr("Show All")};
    }
    return {};
}

void removeCause(EmptyCause cause, LibraryViewModel& library) {
    switch (cause) {
    case EmptyCause::noSource:
    case EmptyCause::emptyFolder:
        return library.chooseFolder();
    case EmptyCause::scanError:
        return library.rescan();
    case EmptyCause::scanning:
        return;
    case EmptyCause::noMatches:
        return library.setSearchText({});
    case EmptyCause::noMarkedFiles:
        return library.setShowsOnlyChecked(false);
    case EmptyCause::noMatchingRatings:
        return library.setRatingFilter(std::nullopt);
    case EmptyCause::allFilesHidden:
        return library.setHiddenExtensions({});
    case EmptyCause::combinedFilters:
        library.setSearchText({});
        library.setShowsOnlyChecked(false);
        library.setRatingFilter(std::nullopt);
        return library.setHiddenExtensions({});
    }
}

QString sourceTitle(const LibraryViewModel& library) {
    const auto& source = library.sourceURL();
    if (source.isEmpty()) return {};
    for (const auto& volume : library.volumes()) {
        if (source == volume.preferredSourceURL || source == volume.url) return text(volume.name);
    }
    return nameText(source);
}

} // namespace kelvara
