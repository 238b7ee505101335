#include "library/LibraryViewModel.h"

#include "library/PreferenceKeys.h"
#include "platform/Preferences.h"
#include "services/VolumeService.h"

namespace kelvara {

LibraryViewModel::LibraryViewModel(const LibraryServices& services, const FileURL& initialSource)
    : m_services{services}, m_scan{services.background, services.main},
      m_recentFoldersCheck{services.background, services.main}, m_sourceRestore{services.background,
                                                                                services.main},
      m_items{std::make_shared<const std::vector<PhotoItem>>()}, m_index{
                                                                     std::make_shared<const LibraryIndex>()} {
    restoreState();
    if (!initialSource.isEmpty()) setSourceURL(initialSource);
    m_services.volumes.observe([this](const VolumeChange& change) { handleVolumeChange(change); });
    refreshVolumes();
    refreshAvailableRecentFolders();
}

LibraryViewModel::~LibraryViewModel() {
    m_services.volumes.observe({});
    m_copyStop.request_stop();
}

void LibraryViewModel::restoreState() {
    const auto& preferences = m_services.preferences;
    const auto text = [&](std::string_view key) { return preferences.text(key).value_or(""); };
    m_sortOrder = kelvara::sortOrder(text(PreferenceKeys::sortOrder)).value_or(SortOrder::captureDate);
    m_sortsAscending = preferences.boolean(PreferenceKeys::sortsAscending).value_or(true);
    m_showsLoupeOverlays = preferences.boolean(PreferenceKeys::showsLoupeOverlays).value_or(true);
    m_showsInspector = preferences.boolean(PreferenceKeys::showsInspector).value_or(true);
    m_inspectorTab = kelvara::inspectorTab(text(PreferenceKeys::inspectorTab)).value_or(InspectorTab::info);
    m_copiesIntoDateFolders = preferences.boolean(PreferenceKeys::copiesIntoDateFolders).value_or(false);
    m_verifiesCopies = preferences.boolean(PreferenceKeys::verifiesCopies).value_or(false);
    m_exportSettings =
        ExportSettings::fromJSON(text(PreferenceKeys::exportSettings)).value_or(ExportSettings{});
    m_deletesPairedFiles = preferences.boolean(PreferenceKeys::deletesPairedFiles).value_or(false);
    if (const auto path = text(PreferenceKeys::copyDestination); path.starts_with('/')) {
        m_copyDestination = FileURL::standardized(path);
    }
    for (const auto& extension :
         preferences.texts(PreferenceKeys::hiddenExtensions).value_or(std::vector<std::string>{})) {
        m_hiddenExtensions.insert(extension);
    }
    for (const auto& path :
         preferences.texts(PreferenceKeys::recentFolders).value_or(std::vector<std::string>{})) {
        if (path.starts_with('/')) m_recentFolders.push_back(FileURL::standardized(path));
    }
    m_availableRecentFolders = m_recentFolders;
}

void LibraryViewModel::setShowsLoupeOverlays(bool shows) {
    if (assign(Property::showsLoupeOverlays, m_showsLoupeOverlays, shows)) {
        m_services.preferences.setBoolean(PreferenceKeys::showsLoupeOverlays, shows);
    }
}

void LibraryViewModel::setShowsInspector(bool shows) {
    if (assign(Property::showsInspector, m_showsInspector, shows)) {
        m_services.preferences.setBoolean(PreferenceKeys::showsInspector, shows);
    }
}

void LibraryViewModel::toggleInspector(InspectorTab tab) {
    const Change change{*this};
    const bool wasShown = m_showsInspector && m_inspectorTab == tab;
    if (assign(Property::inspectorTab, m_inspectorTab, tab)) {
        m_services.preferences.setText(PreferenceKeys::inspectorTab, std::string{rawValue(tab)});
    }
    setShowsInspector(!wasShown);
}

void LibraryViewModel::focusSearch() {
    if (m_sourceURL.isEmpty() || m_items->empty()) return;
    const Change change{*this};
    showGrid();
    assign(Property::wantsSearchFocus, m_wantsSearchFocus, true);
}

void LibraryViewModel::requestZoom(ZoomRequest::Command command) {
    const int serial = m_zoomRequest ? m_zoomRequest->serial + 1 : 1;
    assign(Property::zoomRequest, m_zoomRequest, std::optional{ZoomRequest{command, serial}});
}

} // namespace kelvara
