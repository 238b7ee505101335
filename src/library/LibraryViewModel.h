#pragma once

#include "async/Executor.h"
#include "async/LatestOnly.h"
#include "library/CheckedItems.h"
#include "library/CopyState.h"
#include "library/ItemList.h"
#include "library/LibraryIndex.h"
#include "library/LibraryTypes.h"
#include "model/Observable.h"
#include "model/Rating.h"
#include "model/VolumeInfo.h"
#include "platform/SharePicker.h"
#include "services/XMPService.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <stop_token>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace kelvara {

class AnalyticsClient;
class CopyService;
class Desktop;
class FileSystem;
class FolderChooser;
class Preferences;
class Trash;
class VolumeService;
struct FileRemoval;
struct VolumeChange;

/// The properties of `LibraryViewModel` that views observe, one for each reader of it below.
enum class LibraryProperty {
    volumes,
    sourceURL,
    items,
    sortOrder,
    sortsAscending,
    isScanning,
    scanError,
    visibleItems,
    hiddenExtensions,
    searchText,
    isSearchFocused,
    wantsSearchFocus,
    keyFocusRequest,
    viewMode,
    showsLoupeOverlays,
    showsInspector,
    inspectorTab,
    copyDestination,
    copiesIntoDateFolders,
    verifiesCopies,
    copyState,
    copyInterruption,
    exportSettings,
    pendingDeletion,
    deleteError,
    deletesPairedFiles,
    deletingCount,
    ejectingVolumeID,
    ejectError,
    zoomRequest,
    focusedID,
    checkedIDs,
    ratingFilter,
    showsOnlyChecked,
    ratings,
    ratingSaveError,
    columnCount,
    availableRecentFolders,
    count
};

/// What the library works with; everything outlives it.
struct LibraryServices {
    FileSystem& files;
    Trash& trash;
    Executor& background; ///< Scans and copies.
    /// Ratings and deletions, which must not overtake each other: serial, and finishes what was posted when
    /// it ends.
    Executor& sidecarWrites;
    Executor& main; ///< The thread that owns the library.
    Preferences& preferences;
    VolumeService& volumes;
    XMPService& sidecars;
    CopyService& copier;
    FolderChooser& folderChooser;
    Desktop& desktop;
    AnalyticsClient& analytics; ///< Asks the user's settings itself.
    /// Hands the files of an export for sharing over; see `startCopy`.
    std::function<void(std::vector<FileURL>, const SharePicker::Anchor&, const std::optional<ExportLook>&)>
        onShare{};
    std::function<Result<FileURL, FileError>()> makeShareFolder{}; ///< For such files. Background.
    std::function<void()> emptyImageCaches;
    std::string collationLocale; ///< See `NameOrder`.
};

/// The one state of the main window: the source and its photos, their order and filters, the focus, marks and
/// ratings, and the copy or deletion that runs. Views observe the properties they read and call the
/// operations; nothing about photos is decided elsewhere.
///
/// Main thread only. Files are looked at in the background; a superseded scan publishes nothing.
class LibraryViewModel : public Observable<LibraryProperty> {
public:
    using Property = LibraryProperty;

    /// Reads the remembered view state, opens `initialSource` if there is one, and begins to watch volumes.
    explicit LibraryViewModel(const LibraryServices& services, const FileURL& initialSource = {});
    ~LibraryViewModel();

    // Sources

    [[nodiscard]] const std::vector<VolumeInfo>& volumes() const { return m_volumes; }
    /// Empty when no source is chosen.
    [[nodiscard]] const FileURL& sourceURL() const { return m_sourceURL; }
    /// A different value clears the search, is remembered and scanned.
    void setSourceURL(const FileURL& source);
    void selectVolume(const FileURL& id);
    void chooseFolder();
    void openRecentFolder(const FileURL& folder);
    void removeRecentFolder(const FileURL& folder);
    /// The recent folders that were there when last looked, most recent first.
    [[nodiscard]] const std::vector<FileURL>& availableRecentFolders() const {
        return m_availableRecentFolders;
    }
    void refreshVolumes();
    void eject(const VolumeInfo& volume);
    /// The volume that holds the source, if it is one that can be ejected.
    [[nodiscard]] const VolumeInfo* sourceVolume() const;
    [[nodiscard]] const FileURL& ejectingVolumeID() const { return m_ejectingVolumeID; }
    [[nodiscard]] const std::string& ejectError() const { return m_ejectError; }
    void clearEjectError() { assign(Property::ejectError, m_ejectError, {}); }

    // Scanning

    void rescan();
    [[nodiscard]] bool isScanning() const { return m_isScanning; }
    [[nodiscard]] const std::string& scanError() const { return m_scanError; }

    // Items

    /// The scan's result, in the scanner's order.
    [[nodiscard]] const std::vector<PhotoItem>& items() const { return *m_items; }
    [[nodiscard]] ItemList sortedItems() const { return {m_items, m_sortedPositions}; }
    /// What grid, filmstrip and navigation show. Valid until the next change.
    [[nodiscard]] const ItemList& visibleItems() const { return m_visibleItems; }
    /// The upper-case extensions that occur in the source, in alphabetical order.
    [[nodiscard]] const std::vector<std::string>& extensions() const { return m_index->extensions(); }

    [[nodiscard]] SortOrder sortOrder() const { return m_sortOrder; }
    void setSortOrder(SortOrder order);
    [[nodiscard]] bool sortsAscending() const { return m_sortsAscending; }
    void setSortsAscending(bool ascending);

    [[nodiscard]] const std::set<std::string>& hiddenExtensions() const { return m_hiddenExtensions; }
    void setHiddenExtensions(std::set<std::string> extensions);
    void toggleExtension(const std::string& extension);
    [[nodiscard]] const std::string& searchText() const { return m_searchText; }
    void setSearchText(const std::string& text);
    [[nodiscard]] const std::optional<RatingFilter>& ratingFilter() const { return m_ratingFilter; }
    void setRatingFilter(const std::optional<RatingFilter>& filter);
    [[nodiscard]] bool showsOnlyChecked() const { return m_showsOnlyChecked; }
    void setShowsOnlyChecked(bool onlyChecked);

    // Focus and navigation

    /// The focused item's URL; empty for none.
    [[nodiscard]] const FileURL& focusedID() const { return m_focusedID; }
    void setFocusedID(const FileURL& id);
    [[nodiscard]] const PhotoItem* focusedItem() const;
    [[nodiscard]] std::optional<std::size_t> focusedIndex() const;
    /// Where an item stands in `visibleItems`.
    [[nodiscard]] std::optional<std::size_t> visibleIndex(const FileURL& id) const;
    void moveFocus(MoveDirection direction);
    [[nodiscard]] int columnCount() const { return m_columnCount; }
    void setColumnCount(int columns) { assign(Property::columnCount, m_columnCount, columns); }

    [[nodiscard]] ViewMode viewMode() const { return m_viewMode; }
    /// Nothing happens while no item is focused.
    void toggleViewMode();
    void showGrid();

    /// A contiguous slice of `visibleItems` around the focus, and where the slice begins.
    [[nodiscard]] IndexRange filmstripItems(std::size_t radius, std::size_t extraBefore,
                                            std::size_t extraAfter) const;
    /// Nearest first, the next before the previous, without the item itself.
    [[nodiscard]] std::vector<PhotoItem> neighbours(const FileURL& of, std::size_t radius) const;
    /// The items of the rows after the visible ones, in order.
    [[nodiscard]] std::vector<PhotoItem> prefetchCandidates(IndexRange visible, std::size_t rowsAhead) const;

    // Window state

    [[nodiscard]] bool isSearchFocused() const { return m_isSearchFocused; }
    void setSearchFocused(bool focused) { assign(Property::isSearchFocused, m_isSearchFocused, focused); }
    [[nodiscard]] bool wantsSearchFocus() const { return m_wantsSearchFocus; }
    /// The search field took the focus that `focusSearch` asked for.
    void didFocusSearch() { assign(Property::wantsSearchFocus, m_wantsSearchFocus, false); }
    void focusSearch();
    /// Counts up each time grid and loupe should take the keyboard back.
    [[nodiscard]] int keyFocusRequest() const { return m_keyFocusRequest; }
    void requestKeyFocus() { assign(Property::keyFocusRequest, m_keyFocusRequest, m_keyFocusRequest + 1); }
    [[nodiscard]] bool showsLoupeOverlays() const { return m_showsLoupeOverlays; }
    void setShowsLoupeOverlays(bool shows);
    [[nodiscard]] bool showsInspector() const { return m_showsInspector; }
    void setShowsInspector(bool shows);
    [[nodiscard]] InspectorTab inspectorTab() const { return m_inspectorTab; }
    /// Hides the inspector when it shows that tab; else shows it on that tab.
    void toggleInspector(InspectorTab tab);
    [[nodiscard]] const std::optional<ZoomRequest>& zoomRequest() const { return m_zoomRequest; }
    void requestZoom(ZoomRequest::Command command);

    // Marks and ratings

    [[nodiscard]] const CheckedItems& checkedIDs() const { return m_checked; }
    [[nodiscard]] bool isChecked(const FileURL& id) const;
    void toggleChecked(const FileURL& id);
    /// Marks everything from the focused item to this one, and focuses it.
    void markRange(const FileURL& target);
    void clearMarks();
    /// In the order of `sortedItems`.
    [[nodiscard]] std::vector<PhotoItem> markedItems() const;
    /// Bytes of all marked items.
    [[nodiscard]] std::int64_t checkedBytes() const { return m_checked.bytes(); }
    /// No stars where nobody has rated the shot.
    [[nodiscard]] Rating rating(const FileURL& id) const;
    void setRating(Rating rating, const FileURL& id);
    /// Whether the rating of this item lives in a sidecar; else it lasts for the session.
    [[nodiscard]] bool keepsRatingInSidecar(const FileURL& id) const;
    [[nodiscard]] const std::string& ratingSaveError() const { return m_ratingSaveError; }
    void clearRatingSaveError() { assign(Property::ratingSaveError, m_ratingSaveError, {}); }
    /// The other items of the source that belong to the same shots, in the source's order.
    [[nodiscard]] std::vector<PhotoItem> pairedFiles(std::span<const PhotoItem> of) const;
    /// What an action on one item applies to: all marked items when it is one of several, else it alone.
    [[nodiscard]] std::vector<PhotoItem> actionTargets(const PhotoItem& item) const;

    // Copying

    [[nodiscard]] const FileURL& copyDestination() const { return m_copyDestination; }
    [[nodiscard]] bool copiesIntoDateFolders() const { return m_copiesIntoDateFolders; }
    void setCopiesIntoDateFolders(bool intoDateFolders);
    /// Whether each copy is read back and compared with the original.
    [[nodiscard]] bool verifiesCopies() const { return m_verifiesCopies; }
    void setVerifiesCopies(bool verifies);
    [[nodiscard]] const CopyState& copyState() const { return m_copyState; }
    [[nodiscard]] bool isCopying() const {
        return std::holds_alternative<CopyService::Progress>(m_copyState);
    }
    /// The running copy has been told to stop, and finishes the files in progress.
    [[nodiscard]] bool isStoppingCopy() const { return isCopying() && m_copyStop.stop_requested(); }
    /// Whether the running or last copy was told to verify.
    [[nodiscard]] bool isCopyVerified() const { return m_copyJob.verifies; }
    /// Why the running or last copy was stopped from outside; empty when it was not.
    [[nodiscard]] const std::string& copyInterruption() const { return m_copyInterruption; }
    /// Copies the marked items, or exports `exportItems`, asking for a folder first where none is known.
    /// With `sharingFrom` the exported files go to a temporary folder, and when they are made to `onShare`.
    void startCopy(std::optional<CopyService::Export> exportAs = {},
                   std::optional<SharePicker::Anchor> sharingFrom = {});
    /// Files in progress finish, no other begins.
    void cancelCopy();
    void dismissCopy();
    /// Whether any photo of the last copy is still marked.
    [[nodiscard]] bool copiedMarkedPhotos() const;
    /// Unmarks the photos of the last copy; other marks stay.
    void unmarkCopiedPhotos();
    /// Asks for a folder; `onChosen` follows when one was chosen.
    void chooseCopyDestination(std::function<void()> onChosen = {});

    // Exporting

    [[nodiscard]] const ExportSettings& exportSettings() const { return m_exportSettings; }
    /// Remembered at once.
    void setExportSettings(const ExportSettings& settings);
    /// Opens the options of an export of these photos with this look, unless a copy runs. Beeps for no
    /// photos.
    void showExportOptions(std::vector<PhotoItem> items, std::optional<ExportLook> look);
    /// What the export works on, and the look it would have; empty when there is none. They change with
    /// `copyState`, and so does `copyExport`.
    [[nodiscard]] const std::vector<PhotoItem>& exportItems() const { return m_exportItems; }
    [[nodiscard]] const std::optional<ExportLook>& pendingExportLook() const { return m_pendingExportLook; }
    /// What the running or last job exports; empty for a copy.
    [[nodiscard]] const std::optional<CopyService::Export>& copyExport() const { return m_copyExport; }

    // Deleting

    /// What the user is asked about; empty when nobody asks.
    [[nodiscard]] const std::optional<std::vector<PhotoItem>>& pendingDeletion() const {
        return m_pendingDeletion;
    }
    /// Whether deleted files are erased, as on cards, rather than moved to the Trash. While the user is asked
    /// it stays as it was asked.
    [[nodiscard]] bool deletesPermanently() const;
    /// Whether the other files of the shots go, too.
    [[nodiscard]] bool deletesPairedFiles() const { return m_deletesPairedFiles; }
    void setDeletesPairedFiles(bool deletes);
    /// Asks about the action targets of the focused photo.
    void requestDeleteForFocused();
    /// A running copy refuses with `deleteError`; a running deletion or ejection with a beep.
    void requestDelete(std::vector<PhotoItem> items);
    void cancelDeletion();
    void confirmDeletion();
    /// Deletes without asking. Photos leave the list when all files are done; those that fail stay, and
    /// `deleteError` tells of them. A deletion is finished even when the library goes meanwhile.
    void deleteItems(std::span<const PhotoItem> items);
    /// What confirming deletes: the pending items and, where wanted, the files that belong to them.
    [[nodiscard]] std::vector<PhotoItem> deletionTargets() const;
    /// How many of `items` no copy of this session has brought to its destination. Empty while nothing of
    /// this source was copied.
    [[nodiscard]] std::optional<std::size_t> notCopiedCount(std::span<const PhotoItem> items) const;
    /// The number of this source's files that are being deleted.
    [[nodiscard]] std::size_t deletingCount() const;
    [[nodiscard]] bool isDeleting() const { return m_deletion.has_value(); }
    [[nodiscard]] const std::string& deleteError() const { return m_deleteError; }
    void clearDeleteError() { assign(Property::deleteError, m_deleteError, {}); }

private:
    using Items = std::shared_ptr<const std::vector<PhotoItem>>;
    /// The items of a source, and what sorting and filtering know of them.
    struct Listing {
        Items items;
        std::shared_ptr<const LibraryIndex> index;
    };
    struct ScanResult;
    /// What the running or last copy works on, whatever is chosen meanwhile.
    struct CopyJob {
        std::vector<FileURL> photos;
        FileURL source;
        FileURL destination; ///< Empty for a folder that is yet to be made for sharing.
        bool verifies = false;
        std::optional<SharePicker::Anchor> sharingFrom;
    };
    /// A deletion that runs.
    struct Deletion {
        FileURL source;
        std::size_t count = 0;
        std::unordered_set<FileURL> sidecars; ///< Those that go.
        std::stop_source stop;
    };
    void restoreState();
    void applyVolumes(std::vector<VolumeInfo> volumes);
    void restoreSource();
    void handleVolumeChange(const VolumeChange& change);
    bool refusesEject();
    void beginEject(const VolumeInfo& volume);
    void didEject(const VolumeInfo& volume, const Result<void, std::string>& result);
    void addRecentFolder(const FileURL& folder);
    void saveRecentFolders();
    void refreshAvailableRecentFolders();
    void resetForScan();
    void publish(ScanResult result);
    void setItems(const Listing& listing, std::span<const FileURL> marked = {});
    void updateSortedItems();
    void updateVisibleItems();
    void repairFocus();
    void setViewMode(ViewMode mode) { assign(Property::viewMode, m_viewMode, mode); }
    void saveRating(Rating rating, const FileURL& id);
    void didSaveRating(Rating saved, const FileURL& id, const Result<void, XMPError>& result);
    void runCopy(const std::optional<CopyService::Export>& exportAs,
                 const std::optional<SharePicker::Anchor>& sharingFrom);
    void carryOut(CopyService::PlanRequest request);
    void publishCopy(const CopyState& state);
    /// Gives what was exported for sharing to who shares it.
    void handOver(const CopyService::Report& report) const;
    void interruptCopy(const FileURL& removedVolume);
    [[nodiscard]] CopyService::PlanRequest copyRequest(const std::optional<CopyService::Export>& exportAs,
                                                       bool isForSharing) const;
    void noteCopied(const std::vector<PhotoItem>& items);
    bool refusesDeletion();
    void runDeletion(std::span<const PhotoItem> items, bool permanently);
    void didDelete(const FileRemoval& removal, const Items& before, const Listing& rest);
    /// Where the volume of the deletion went, another one may be next.
    void stopDeletion(const FileURL& volume);
    /// Whether the running deletion takes the item's rating with it.
    [[nodiscard]] bool willLoseSidecar(const FileURL& id) const;
    static Listing listingWithout(const std::vector<PhotoItem>& items,
                                  const std::unordered_set<FileURL>& removed, const std::string& locale);
    /// Takes `rest`, a part of the items, in their place; marks and focus stay, or go to the next one.
    void keepOnly(const Listing& rest);
    [[nodiscard]] FileURL focusAmong(const std::function<bool(const FileURL&)>& isKept) const;

    LibraryServices m_services;
    LatestOnly m_scan;
    LatestOnly m_recentFoldersCheck;
    LatestOnly m_sourceRestore;

    std::vector<VolumeInfo> m_volumes;
    FileURL m_sourceURL;
    bool m_hasRestoredSource = false;
    std::vector<FileURL> m_recentFolders;
    std::vector<FileURL> m_availableRecentFolders;
    FileURL m_ejectingVolumeID;
    std::string m_ejectError;

    bool m_isScanning = false;
    std::string m_scanError;

    Items m_items;
    std::shared_ptr<const LibraryIndex> m_index;
    std::vector<std::uint32_t> m_sortedPositions;
    ItemList m_visibleItems;
    std::vector<std::uint32_t> m_visibleIndexes; // by position; `notVisible` for hidden items
    SortOrder m_sortOrder = SortOrder::captureDate;
    bool m_sortsAscending = true;
    std::set<std::string> m_hiddenExtensions;
    std::string m_searchText;
    std::optional<RatingFilter> m_ratingFilter;
    bool m_showsOnlyChecked = false;

    FileURL m_focusedID;
    int m_columnCount = 1;
    ViewMode m_viewMode = ViewMode::grid;
    bool m_isSearchFocused = false;
    bool m_wantsSearchFocus = false;
    int m_keyFocusRequest = 0;
    bool m_showsLoupeOverlays = true;
    bool m_showsInspector = true;
    InspectorTab m_inspectorTab = InspectorTab::info;
    std::optional<ZoomRequest> m_zoomRequest;

    CheckedItems m_checked;
    std::unordered_map<FileURL, Rating> m_ratings;
    /// Ratings on their way to the disk, or that were so when the running scan began: it may have missed
    /// them.
    std::unordered_map<FileURL, Rating> m_savedRatings;
    int m_runningSaves = 0;
    std::string m_ratingSaveError;

    FileURL m_copyDestination;
    bool m_copiesIntoDateFolders = false;
    bool m_verifiesCopies = false;
    CopyJob m_copyJob;
    CopyState m_copyState;
    std::string m_copyInterruption;
    std::stop_source m_copyStop;
    std::unordered_set<PhotoItem> m_copiedItems; // of the source, in this session

    ExportSettings m_exportSettings;
    std::vector<PhotoItem> m_exportItems;
    std::optional<ExportLook> m_pendingExportLook;
    std::optional<CopyService::Export> m_copyExport;

    std::optional<std::vector<PhotoItem>> m_pendingDeletion;
    bool m_pendingIsPermanent = false;
    bool m_deletesPairedFiles = false;
    std::optional<Deletion> m_deletion;
    std::string m_deleteError;
    /// Files that went while a scan was running, which may have seen them before.
    std::unordered_set<FileURL> m_removedDuringScan;

    /// Expires with the view model; callbacks that arrive later see it and do nothing.
    std::shared_ptr<int> m_lifetime = std::make_shared<int>(0);
};

} // namespace kelvara
