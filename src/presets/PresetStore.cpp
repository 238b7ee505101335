#include "presets/PresetStore.h"

#include "platform/Desktop.h"
#include "platform/FileSystem.h"
#include "platform/FolderWatch.h"
#include "platform/Preferences.h"
#include "platform/Trash.h"
#include "presets/BuiltInPresets.h"
#include "text/Localized.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <sstream>
#include <tuple>
#include <utility>

namespace kelvara {

namespace {

namespace Keys {
constexpr std::string_view selectedPresetID = "selectedPresetID";
constexpr std::string_view amount = "presetAmount";
constexpr std::string_view expanded = "expandedPresetCategories";
constexpr std::string_view favourites = "favouritePresets";
constexpr std::string_view previews = "presetPreviews";
} // namespace Keys

constexpr const char* favouritesID = "favourites";

/// Sliders pass few values, so that few pictures are rendered for them, and those found again.
double wholePercent(double amount) { return std::round(std::clamp(amount, 0.0, 1.0) * 100) / 100; }

std::vector<std::string> words(const std::string& text) {
    std::istringstream stream{foldedForSearch(text)};
    return {std::istream_iterator<std::string>{stream}, {}};
}

bool containsAll(std::string_view text, const std::vector<std::string>& words) {
    return std::all_of(words.begin(), words.end(),
                       [&](const auto& word) { return text.find(word) != std::string_view::npos; });
}

} // namespace

PresetStore::PresetStore(const PresetServices& services)
    : m_services{services}, m_order{services.collationLocale}, m_reading{services.background, services.main},
      m_builtIn{builtInEntries()} {
    m_services.folder = services.folder.standardized();
    readPreferences();
    arrangeEntries();
    m_services.background.post([this, &files = m_services.files, &main = m_services.main, folder = folder(),
                                lifetime = std::weak_ptr{m_lifetime}] {
        // Where it can't be made the user has no presets, and importing some says why.
        static_cast<void>(files.createFolders(folder));
        main.post([this, lifetime] {
            if (lifetime.expired()) return;
            m_services.watch.watch(this->folder(), [this, lifetime] {
                if (!lifetime.expired()) readFolder();
            });
        });
    });
}

PresetStore::~PresetStore() { m_importStop.request_stop(); }

void PresetStore::readPreferences() {
    const auto& preferences = m_services.preferences;
    const auto set = [&](std::string_view key) {
        const auto texts = preferences.texts(key).value_or(std::vector<std::string>{});
        return std::set<std::string>{texts.begin(), texts.end()};
    };
    m_selectedID = preferences.text(Keys::selectedPresetID).value_or("");
    const auto amount = preferences.number(Keys::amount).value_or(1);
    m_amount = std::isfinite(amount) ? wholePercent(amount) : 1;
    m_showsPreviews = preferences.boolean(Keys::previews).value_or(true);
    m_favourites = set(Keys::favourites);
    if (preferences.texts(Keys::expanded)) {
        m_expanded = set(Keys::expanded);
    } else {
        m_expanded.insert(favouritesID);
        for (const auto& entry : m_builtIn) m_expanded.insert(entry.categoryID);
    }
}

// The list

void PresetStore::readFolder() {
    m_reading.start([&files = m_services.files, folder = folder(), known = m_imported](
                        const auto& stop) { return readPresetFolder(files, folder, known, stop); },
                    [this](std::optional<FolderPresets> presets) { didReadFolder(std::move(presets)); });
}

void PresetStore::didReadFolder(std::optional<FolderPresets> presets) {
    const Change change{*this};
    if (presets) {
        if (*presets != m_imported) {
            m_imported = std::move(*presets);
            arrangeEntries();
        }
        if (!m_selectedID.empty() && !preset(m_selectedID)) select({});
    }
    if (std::exchange(m_awaitsImported, false)) publishImport();
}

PresetStore::Entry PresetStore::entry(Preset preset, std::string categoryID,
                                      std::string categoryTitle) const {
    auto titleKey = m_order.sortKey(preset->title);
    auto foldedTitle = foldedForSearch(preset->title);
    return {std::move(preset), std::move(categoryID), std::move(categoryTitle), std::move(titleKey),
            std::move(foldedTitle)};
}

std::vector<PresetStore::Entry> PresetStore::builtInEntries() const {
    std::vector<Entry> entries;
    for (auto& category : builtInPresets()) {
        const auto first = static_cast<std::ptrdiff_t>(entries.size());
        for (auto& preset : category.presets) {
            entries.push_back(entry(std::make_shared<const DevelopPreset>(std::move(preset)),
                                    "builtin/" + category.name, category.title));
        }
        std::stable_sort(entries.begin() + first, entries.end(),
                         [](const auto& a, const auto& b) { return a.titleKey < b.titleKey; });
    }
    return entries;
}

void PresetStore::arrangeEntries() {
    m_entries.clear();
    for (const auto& [id, imported] : m_imported) {
        m_entries.push_back(entry(imported.preset, "imported/" + imported.category, imported.category));
    }
    std::map<std::string, std::string> keys; // of the categories, by id
    for (const auto& entry : m_entries)
        keys.try_emplace(entry.categoryID, m_order.sortKey(entry.categoryTitle));
    const auto order = [&](const Entry& entry) {
        return std::tie(keys.at(entry.categoryID), entry.categoryID, entry.titleKey);
    };
    std::stable_sort(m_entries.begin(), m_entries.end(),
                     [&](const auto& a, const auto& b) { return order(a) < order(b); });
    m_entries.insert(m_entries.end(), m_builtIn.begin(), m_builtIn.end());
    updateCategories();
    updateActive();
}

void PresetStore::updateCategories() {
    std::vector<PresetCategory> categories;
    std::vector<const Entry*> favourites;
    const auto wanted = words(m_searchText);
    for (const auto& entry : m_entries) {
        if (!containsAll(entry.foldedTitle, wanted)) continue;
        if (categories.empty() || categories.back().id != entry.categoryID) {
            categories.push_back({entry.categoryID, entry.categoryTitle, {}});
        }
        categories.back().presets.push_back(entry.preset);
        if (isFavourite(entry.preset->id)) favourites.push_back(&entry);
    }
    if (!favourites.empty()) {
        std::stable_sort(favourites.begin(), favourites.end(),
                         [](const auto* a, const auto* b) { return a->titleKey < b->titleKey; });
        PresetCategory category{favouritesID, localized("Favourites"), {}};
        for (const auto* entry : favourites) category.presets.push_back(entry->preset);
        categories.insert(categories.begin(), std::move(category));
    }
    assign(Property::visibleCategories, m_categories, std::move(categories));
}

PresetStore::Preset PresetStore::preset(const std::string& id) const {
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&](const auto& entry) { return entry.preset->id == id; });
    return found == m_entries.end() ? nullptr : found->preset;
}

bool PresetStore::isImported(const std::string& id) const { return m_imported.contains(id); }

void PresetStore::setSearchText(const std::string& text) {
    const Change change{*this};
    const bool wasOn = !m_searchText.empty();
    if (!assign(Property::searchText, m_searchText, text)) return;
    if (wasOn == text.empty()) didChange(Property::expandedCategories);
    updateCategories();
}

bool PresetStore::isExpanded(const std::string& categoryID) const {
    return !m_searchText.empty() || m_expanded.contains(categoryID);
}

void PresetStore::setExpanded(const std::string& categoryID, bool expanded) {
    if (m_expanded.contains(categoryID) == expanded) return;
    if (expanded) {
        m_expanded.insert(categoryID);
    } else {
        m_expanded.erase(categoryID);
    }
    saveExpanded();
}

void PresetStore::saveExpanded() {
    m_services.preferences.setTexts(Keys::expanded, {m_expanded.begin(), m_expanded.end()});
    didChange(Property::expandedCategories);
}

void PresetStore::setFavourite(const std::string& id, bool favourite) {
    if (isFavourite(id) == favourite) return;
    const Change change{*this};
    if (favourite) {
        m_favourites.insert(id);
    } else {
        m_favourites.erase(id);
    }
    m_services.preferences.setTexts(Keys::favourites, {m_favourites.begin(), m_favourites.end()});
    didChange(Property::favourites);
    updateCategories();
}

// The chosen preset

void PresetStore::select(const std::string& id) {
    const Change change{*this};
    const auto known = preset(id) ? id : std::string{};
    if (assign(Property::selectedPresetID, m_selectedID, known)) {
        m_services.preferences.setText(Keys::selectedPresetID, known);
    }
    m_hoveredID.reset();
    updateActive();
}

void PresetStore::selectBy(int step) {
    std::vector<std::string> ids{std::string{}}; // none
    std::set<std::string_view> met;
    for (const auto& category : m_categories) {
        for (const auto& preset : category.presets) {
            if (met.insert(preset->id).second) ids.push_back(preset->id);
        }
    }
    if (met.empty()) return; // nothing found; what is selected stays
    // Where the search hides the selected one, the way begins at none.
    const auto found = std::find(ids.begin(), ids.end(), m_selectedID);
    const auto at = found == ids.end() ? 0 : found - ids.begin();
    const auto count = static_cast<std::ptrdiff_t>(ids.size());
    select(ids[static_cast<std::size_t>((at + step + count) % count)]);
}

void PresetStore::setHoveredPresetID(std::optional<std::string> id) {
    if (m_hoveredID == id) return;
    m_hoveredID = std::move(id);
    updateActive();
}

void PresetStore::setAmount(double amount) {
    if (!std::isfinite(amount)) return;
    const Change change{*this};
    if (!assign(Property::amount, m_amount, wholePercent(amount))) return;
    m_services.preferences.setNumber(Keys::amount, m_amount);
    updateActive();
}

PresetStore::Preset PresetStore::atAmount(const Preset& preset) const {
    if (!preset || m_amount >= 1) return preset;
    return std::make_shared<const DevelopPreset>(preset->withAmount(m_amount));
}

void PresetStore::updateActive() {
    auto shown = preset(m_selectedID);
    if (m_hoveredID) {
        const auto hovered = preset(*m_hoveredID);
        if (hovered || m_hoveredID->empty()) shown = hovered;
    }
    auto active = atAmount(shown);
    if (active && m_active && active->revision == m_active->revision) return;
    assign(Property::activePreset, m_active, std::move(active));
}

PresetStore::Preset PresetStore::selectedPreset() const { return atAmount(preset(m_selectedID)); }

void PresetStore::setShowsPreviews(bool shows) {
    if (assign(Property::showsPreviews, m_showsPreviews, shows)) {
        m_services.preferences.setBoolean(Keys::previews, shows);
    }
}

// Importing and removing

void PresetStore::importPresets(std::vector<FileURL> sources) {
    if (sources.empty()) return;
    std::move(sources.begin(), sources.end(), std::back_inserter(m_waitingSources));
    if (m_isImporting) return;
    const Change change{*this};
    dismissImport();
    assign(Property::isImporting, m_isImporting, true);
    m_runningReport = {};
    m_importStop = {};
    importWaiting();
}

void PresetStore::importWaiting() {
    m_services.background.post([this, &files = m_services.files, &main = m_services.main, folder = folder(),
                                sources = std::exchange(m_waitingSources, {}),
                                stop = m_importStop.get_token(), lifetime = std::weak_ptr{m_lifetime}] {
        auto report = kelvara::importPresets(files, sources, folder, stop);
        main.post([this, lifetime, report = std::move(report)]() mutable {
            if (!lifetime.expired()) didImport(std::move(report));
        });
    });
}

void PresetStore::didImport(PresetImportReport report) {
    m_runningReport.add(std::move(report));
    if (!m_waitingSources.empty()) return importWaiting();
    m_awaitsImported = true;
    readFolder();
}

void PresetStore::publishImport() {
    if (!m_waitingSources.empty()) return importWaiting();
    const Change change{*this};
    const std::set<std::string_view> imported{m_runningReport.imported.begin(),
                                              m_runningReport.imported.end()};
    for (const auto& entry : m_entries) {
        if (imported.contains(entry.preset->id)) setExpanded(entry.categoryID, true);
    }
    auto error = m_runningReport.failure;
    if (error.empty() && m_runningReport.foundNone() && !m_runningReport.wasCancelled) {
        error = localized("No Lightroom develop presets were found.");
    }
    assign(Property::importError, m_importError, std::move(error));
    assign(Property::importReport, m_importReport, std::optional{std::move(m_runningReport)});
    assign(Property::isImporting, m_isImporting, false);
}

void PresetStore::cancelImport() {
    m_waitingSources.clear();
    m_importStop.request_stop();
}

void PresetStore::dismissImport() {
    const Change change{*this};
    assign(Property::importReport, m_importReport, {});
    assign(Property::importError, m_importError, {});
}

void PresetStore::remove(const std::string& id) {
    const auto found = m_imported.find(id);
    if (found == m_imported.end()) return;
    clearRemoveError();
    m_services.background.post([this, &trash = m_services.trash, &main = m_services.main,
                                url = found->second.url, lifetime = std::weak_ptr{m_lifetime}] {
        const auto removed = trash.moveToTrash(url);
        main.post([this, lifetime, error = removed ? std::string{} : message(removed.error())] {
            if (lifetime.expired()) return;
            assign(Property::removeError, m_removeError, error);
            readFolder();
        });
    });
}

void PresetStore::reveal(const std::string& id) const {
    const auto found = m_imported.find(id);
    if (found != m_imported.end()) m_services.desktop.showInFileManager(found->second.url);
}

} // namespace kelvara
