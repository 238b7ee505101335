#pragma once

#include <string_view>

/// The keys under which preferences are kept; each has one type and one default, given where it is read.
namespace kelvara::PreferenceKeys {

// Remembered view state, owned by LibraryViewModel.
inline constexpr std::string_view sortOrder = "sortOrder";
inline constexpr std::string_view sortsAscending = "sortsAscending";
inline constexpr std::string_view showsLoupeOverlays = "showsLoupeOverlays";
inline constexpr std::string_view showsInspector = "showsInspector";
inline constexpr std::string_view inspectorTab = "inspectorTab";
inline constexpr std::string_view copyDestination = "copyDestination";
inline constexpr std::string_view copiesIntoDateFolders = "copiesIntoDateFolders";
inline constexpr std::string_view verifiesCopies = "verifiesCopies";
inline constexpr std::string_view exportSettings = "exportSettings"; // JSON
inline constexpr std::string_view deletesPairedFiles = "deletesPairedFiles";
inline constexpr std::string_view recentFolders = "recentFolders";
inline constexpr std::string_view hiddenExtensions = "hiddenExtensions";
inline constexpr std::string_view lastSource = "lastSource";

// The grid.
inline constexpr std::string_view gridThumbnailSize = "gridThumbnailSize";
inline constexpr std::string_view gridShowsInfo = "gridShowsInfo";

// The edit inspector.
inline constexpr std::string_view editLightExpanded = "editLightExpanded";

// The Settings window; see Settings.
inline constexpr std::string_view shareAnonymousUsage = "shareAnonymousUsage";
inline constexpr std::string_view cardDeleteErases = "cardDeleteErases";
inline constexpr std::string_view shareLongEdge = "shareLongEdge";

// The window.
inline constexpr std::string_view inspectorWidth = "inspectorWidth";

} // namespace kelvara::PreferenceKeys
