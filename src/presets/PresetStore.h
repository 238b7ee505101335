#pragma once

#include "async/LatestOnly.h"
#include "model/FileURL.h"
#include "model/Observable.h"
#include "presets/DevelopPreset.h"
#include "presets/PresetFolder.h"
#include "presets/PresetImport.h"
#include "text/NameOrder.h"

#include <memory>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <vector>

namespace kelvara {

class Desktop;
class Executor;
class FileSystem;
class FolderWatch;
class Preferences;
class Trash;

/// The properties of `PresetStore` that views observe, one for each reader of it below.
enum class PresetProperty {
    visibleCategories,
    searchText,
    expandedCategories,
    favourites,
    selectedPresetID,
    activePreset,
    amount,
    showsPreviews,
    isImporting,
    importReport,
    importError,
    removeError,
    count
};

/// What the store works with; everything outlives it.
struct PresetServices {
    FileSystem& files;
    Trash& trash;
    FolderWatch& watch;
    Desktop& desktop;
    Preferences& preferences;
    Executor& background;        ///< Reads, imports and removes.
    Executor& main;              ///< The thread that owns the store.
    FileURL folder;              ///< "Presets"; made where it is missing.
    std::string collationLocale; ///< See `NameOrder`.
};

/// A section of the list. A favourite stands in "Favourites" and in its own category.
struct PresetCategory {
    std::string id;                                            ///< Stable from one run to the next.
    std::string title;                                         ///< In the user's words.
    std::vector<std::shared_ptr<const DevelopPreset>> presets; ///< At full strength, by title; not empty.
    friend bool operator==(const PresetCategory&, const PresetCategory&) = default;
};

/// The develop presets there are: those the application brings and those in the folder "Presets", which is
/// watched. Remembers which one is chosen, how strongly it is applied, favourites and open categories.
///
/// Presets are known by `DevelopPreset::id`: "builtin/" and a name, or the file's path within the folder.
/// Main thread; files are read and written in the background.
class PresetStore : public Observable<PresetProperty> {
public:
    using Property = PresetProperty;
    using Preset = std::shared_ptr<const DevelopPreset>;

    /// Reads what is remembered and begins to watch the folder; its presets follow later.
    explicit PresetStore(const PresetServices& services);
    ~PresetStore();

    // The list

    /// "Favourites", the imported categories by name, then those of the application; with a search only
    /// what it finds, and no empty category. Valid until the next change.
    [[nodiscard]] const std::vector<PresetCategory>& visibleCategories() const { return m_categories; }
    /// Null where there is none; at full strength.
    [[nodiscard]] Preset preset(const std::string& id) const;
    /// Whether it is a file of the user's, which can be removed and revealed.
    [[nodiscard]] bool isImported(const std::string& id) const;

    [[nodiscard]] const std::string& searchText() const { return m_searchText; }
    /// Finds titles; neither case nor accents count.
    void setSearchText(const std::string& text);
    /// Every category is while a search is on.
    [[nodiscard]] bool isExpanded(const std::string& categoryID) const;
    void setExpanded(const std::string& categoryID, bool expanded);
    [[nodiscard]] bool isFavourite(const std::string& id) const { return m_favourites.contains(id); }
    void setFavourite(const std::string& id, bool favourite);

    // The chosen preset

    /// Empty for none.
    [[nodiscard]] const std::string& selectedPresetID() const { return m_selectedID; }
    /// An empty or unknown id selects none. Ends hovering, so that the choice is seen.
    void select(const std::string& id);
    /// Through all visible presets and "none", which stands before the first and after the last.
    void selectNext() { selectBy(1); }
    void selectPrevious() { selectBy(-1); }
    /// The preset under the pointer: an empty id is "none", no value is none at all.
    void setHoveredPresetID(std::optional<std::string> id);
    /// Strength, 0 to 1 in whole percents; the same for every preset.
    [[nodiscard]] double amount() const { return m_amount; }
    void setAmount(double amount);
    /// The hovered preset, else the selected one, at the strength; null for none. Its revision changes when,
    /// and only when, it draws differently, and comes back with the same preset and strength.
    [[nodiscard]] const Preset& activePreset() const { return m_active; }
    /// The selected preset at the strength; null for none.
    [[nodiscard]] Preset selectedPreset() const;
    /// Whether the photo is shown through the active preset.
    [[nodiscard]] bool showsPreviews() const { return m_showsPreviews; }
    void setShowsPreviews(bool shows);

    // Importing and removing

    /// Copies presets into the folder: files, folders of them at any depth, and ".zip" archives. Waits for
    /// an import that runs.
    void importPresets(std::vector<FileURL> sources);
    [[nodiscard]] bool isImporting() const { return m_isImporting; }
    /// What has been imported stays, and is reported.
    void cancelImport();
    /// The last import's outcome, published together with its presets.
    [[nodiscard]] const std::optional<PresetImportReport>& importReport() const { return m_importReport; }
    /// Why the last import ended early or gave nothing at all; else empty, as when it was cancelled.
    [[nodiscard]] const std::string& importError() const { return m_importError; }
    /// Takes report and error off the screen.
    void dismissImport();

    /// Moves an imported preset's file to the Trash.
    void remove(const std::string& id);
    [[nodiscard]] const std::string& removeError() const { return m_removeError; }
    void clearRemoveError() { assign(Property::removeError, m_removeError, {}); }
    /// Shows an imported preset's file in the file manager.
    void reveal(const std::string& id) const;
    /// "Presets", for the file manager.
    [[nodiscard]] const FileURL& folder() const { return m_services.folder; }

private:
    /// A preset's place in the list.
    struct Entry {
        Preset preset;
        std::string categoryID;
        std::string categoryTitle;
        std::string titleKey; ///< Compares like titles are ordered.
        std::string foldedTitle;
    };

    void readPreferences();
    void readFolder();
    void didReadFolder(std::optional<FolderPresets> presets);
    [[nodiscard]] Entry entry(Preset preset, std::string categoryID, std::string categoryTitle) const;
    [[nodiscard]] std::vector<Entry> builtInEntries() const;
    void arrangeEntries();
    void updateCategories();
    void updateActive();
    [[nodiscard]] Preset atAmount(const Preset& preset) const;
    void selectBy(int step);
    void importWaiting();
    void didImport(PresetImportReport report);
    void publishImport();
    void saveExpanded();

    PresetServices m_services;
    NameOrder m_order;
    LatestOnly m_reading;

    FolderPresets m_imported;
    std::vector<Entry> m_builtIn;
    std::vector<Entry> m_entries; // in the order of the list, each once
    std::vector<PresetCategory> m_categories;
    std::string m_searchText;
    std::set<std::string> m_expanded;
    std::set<std::string> m_favourites;

    std::string m_selectedID;
    std::optional<std::string> m_hoveredID;
    double m_amount = 1;
    Preset m_active;
    bool m_showsPreviews = true;

    bool m_isImporting = false;
    std::vector<FileURL> m_waitingSources;
    std::stop_source m_importStop;
    PresetImportReport m_runningReport;
    bool m_awaitsImported = false; // the import has ended, its presets are being read
    std::optional<PresetImportReport> m_importReport;
    std::string m_importError;
    std::string m_removeError;

    /// Expires with the store; callbacks that arrive later see it and do nothing.
    std::shared_ptr<int> m_lifetime = std::make_shared<int>(0);
};

} // namespace kelvara
