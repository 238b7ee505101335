#include "app/ScreenshotStates.h"

#include "presets/EditHistory.h"
#include "presets/EditStore.h"
#include "presets/PresetStore.h"
#include "views/HistogramView.h"
#include "views/SideWindow.h"

#include <QApplication>

#include <array>

namespace kelvara {

namespace {

using Kind = WindowCommand::Kind;

void nothing(LibraryViewModel&, RootView&) {}

void backToGrid(LibraryViewModel& library, RootView&) { library.showGrid(); }

/// The first photo that `isWanted`, else the one that has the focus.
template <typename Predicate> void openFirst(LibraryViewModel& library, Predicate isWanted) {
    const auto& items = library.visibleItems();
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (!isWanted(items[i])) continue;
        library.setFocusedID(items[i].url);
        break;
    }
    library.toggleViewMode();
}

void openPhoto(LibraryViewModel& library, RootView&) {
    openFirst(library, [](const PhotoItem& item) { return item.kind() == MediaKind::raw; });
}

void showPresets(LibraryViewModel& library) {
    if (library.inspectorTab() != InspectorTab::presets) library.toggleInspector(InspectorTab::presets);
}

void leavePresets(LibraryViewModel& library, RootView& root) {
    root.presets().setSearchText({});
    root.presets().select({});
    root.presets().setAmount(1);
    library.toggleInspector(InspectorTab::info);
    library.showGrid();
}

void showEdits(LibraryViewModel& library, RootView& root) {
    openPhoto(library, root);
    if (library.inspectorTab() != InspectorTab::edit) library.toggleInspector(InspectorTab::edit);
    LightAdjustments light;
    const std::array amounts{0.6, 12.0, -45.0, 38.0, 14.0, -10.0};
    for (const auto slider : LightAdjustments::sliders)
        light.set(slider, amounts[static_cast<std::size_t>(slider)]);
    root.edits().setAutomatic(light, library.focusedID());
}

void leaveEdits(LibraryViewModel& library, RootView& root) {
    root.edits().reset(library.focusedID());
    library.toggleInspector(InspectorTab::info);
    library.showGrid();
}

void toggleMarks(LibraryViewModel& library) {
    for (const std::size_t index : {1U, 2U, 5U, 8U}) {
        if (index < library.visibleItems().size())
            library.toggleChecked(FileURL{library.visibleItems()[index].url});
    }
}

/// Every other photo, brighter or darker by `exposure`.
void editPhotos(LibraryViewModel& library, RootView& root, double exposure) {
    LightAdjustments edits;
    for (std::size_t index = 0; index < library.visibleItems().size(); index += 2) {
        edits.set(LightAdjustments::Slider::exposure, exposure * (index % 4 == 0 ? 1 : -1));
        root.edits().store().setAdjustments(edits, library.visibleItems()[index].url);
    }
}

/// Asks how the marked photos are exported, through a preset.
void showExport(LibraryViewModel& library, RootView& root, ExportSettings::Format format) {
    toggleMarks(library);
    root.presets().select("builtin/amber-and-teal");
    root.presets().setAmount(0.8);
    ExportSettings settings;
    settings.format = format;
    library.setExportSettings(settings);
    library.showExportOptions(library.markedItems(), ExportLook{*root.presets().selectedPreset(), {}});
}

void leaveExport(LibraryViewModel& library, RootView& root) {
    library.dismissCopy();
    library.clearMarks();
    library.setExportSettings({});
    root.presets().select({});
    root.presets().setAmount(1);
}

void closeSideWindow(LibraryViewModel&, RootView&) {
    if (auto* window = visibleSideWindow()) window->close();
}

} // namespace

SideWindow* visibleSideWindow() {
    for (auto* window : QApplication::topLevelWidgets()) {
        auto* side = qobject_cast<SideWindow*>(window);
        if (side && side->isVisible()) return side;
    }
    return nullptr;
}

std::vector<ScreenshotState> screenshotStates() {
    const auto window = [](const QString& name, Kind command) {
        return ScreenshotState{name, [command](auto&, RootView& root) { root.perform({command}); },
                               closeSideWindow};
    };
    return {
        {QStringLiteral("grid"), nothing, nothing},
        {QStringLiteral("marked"), [](auto& library, auto&) { toggleMarks(library); },
         [](auto& library, auto&) { library.clearMarks(); }},
        {QStringLiteral("edited"),
         [](auto& library, auto& root) {
             toggleMarks(library);
             editPhotos(library, root, 1);
         },
         [](auto& library, auto& root) {
             editPhotos(library, root, 0);
             library.clearMarks();
         }},
        {QStringLiteral("copied"),
         [](auto& library, auto&) {
             toggleMarks(library);
             library.startCopy();
         },
         [](auto& library, auto&) {
             library.dismissCopy();
             library.clearMarks();
         }},
        {QStringLiteral("export"),
         [](auto& library, auto& root) { showExport(library, root, ExportSettings::Format::jpeg); },
         leaveExport},
        {QStringLiteral("export-png"),
         [](auto& library, auto& root) { showExport(library, root, ExportSettings::Format::png); },
         leaveExport},
        {QStringLiteral("exported"),
         [](auto& library, auto& root) {
             showExport(library, root, ExportSettings::Format::jpeg);
             library.startCopy(CopyService::Export{library.pendingExportLook(), library.exportSettings()});
         },
         leaveExport},
        {QStringLiteral("delete"),
         [](auto& library, auto& root) {
             toggleMarks(library);
             const auto& marked = library.checkedIDs();
             if (!marked.empty()) library.setFocusedID(FileURL{*marked.begin()});
             root.perform({Kind::deletePhotos});
         },
         [](auto& library, auto&) {
             library.cancelDeletion();
             library.clearMarks();
         }},
        {QStringLiteral("grid-only"), [](auto& library, auto&) { library.setShowsInspector(false); },
         [](auto& library, auto&) { library.setShowsInspector(true); }},
        {QStringLiteral("no-matches"), [](auto& library, auto&) { library.setSearchText("sunset"); },
         [](auto& library, auto&) { library.setSearchText({}); }},
        {QStringLiteral("no-marks"), [](auto& library, auto&) { library.setShowsOnlyChecked(true); },
         [](auto& library, auto&) { library.setShowsOnlyChecked(false); }},
        {QStringLiteral("loupe"), openPhoto, backToGrid},
        {QStringLiteral("loupe-100"),
         [](auto& library, auto& root) {
             openPhoto(library, root);
             library.requestZoom(ZoomRequest::Command::toggle);
         },
         backToGrid},
        {QStringLiteral("loupe-only"),
         [](auto& library, auto& root) {
             openPhoto(library, root);
             library.setShowsInspector(false);
             library.setShowsLoupeOverlays(false);
         },
         [](auto& library, auto& root) {
             library.setShowsInspector(true);
             library.setShowsLoupeOverlays(true);
             backToGrid(library, root);
         }},
        {QStringLiteral("video"),
         [](auto& library, auto&) {
             openFirst(library, [](const PhotoItem& item) { return item.kind() == MediaKind::video; });
         },
         backToGrid},
        {QStringLiteral("unreadable"),
         [](auto& library, auto&) {
             openFirst(library, [](const PhotoItem& item) { return item.url.name() == "noise.CR3"; });
         },
         backToGrid},
        {QStringLiteral("presets"),
         [](auto& library, auto& root) {
             openPhoto(library, root);
             showPresets(library);
             root.presets().select("builtin/amber-and-teal");
             root.presets().setAmount(0.8);
         },
         leavePresets},
        {QStringLiteral("presets-search"),
         [](auto& library, auto& root) {
             showPresets(library);
             root.presets().setSearchText("warm");
         },
         leavePresets},
        {QStringLiteral("presets-no-matches"),
         [](auto& library, auto& root) {
             showPresets(library);
             root.presets().setSearchText("sunset");
         },
         leavePresets},
        {QStringLiteral("edit"), showEdits, leaveEdits},
        {QStringLiteral("edit-clipping"),
         [](auto& library, auto& root) {
             showEdits(library, root);
             root.edits().setSlider(LightAdjustments::Slider::exposure, 2, library.focusedID());
             root.edits().setSlider(LightAdjustments::Slider::contrast, 100, library.focusedID());
             for (auto* mark : root.template findChildren<ClippingMark*>()) mark->setChecked(true);
         },
         [](auto& library, auto& root) {
             for (auto* mark : root.template findChildren<ClippingMark*>()) mark->setChecked(false);
             leaveEdits(library, root);
         }},
        window(QStringLiteral("settings"), Kind::showSettings),
        window(QStringLiteral("shortcuts"), Kind::showShortcuts),
        window(QStringLiteral("support"), Kind::showSupport),
        window(QStringLiteral("about"), Kind::showAbout),
    };
}

} // namespace kelvara
