#include "views/CommandStates.h"

#include "library/LibraryViewModel.h"
#include "presets/EditHistory.h"
#include "presets/EditStore.h"
#include "views/LightRow.h"
#include "views/Text.h"

#include <QCoreApplication>
#include <QWidget>

namespace kelvara {

namespace {

using Kind = WindowCommand::Kind;

struct CommandStates {
    Q_DECLARE_TR_FUNCTIONS(CommandStates)
};
QString tr(const char* source) { return CommandStates::tr(source); }

CommandState ratingState(int stars, const LibraryViewModel& library) {
    const auto* focused = library.focusedItem();
    return {stars == 0 ? tr("None") : QString{stars, u'★'}, focused != nullptr,
            focused && library.rating(focused->url).rawValue() == stars};
}

QString name(const EditHistory::Name& step) {
    switch (step.action) {
    case EditHistory::Action::slider:
        return LightRow::name(step.slider);
    case EditHistory::Action::automatic:
        return tr("Auto");
    case EditHistory::Action::reset:
        return tr("Reset");
    case EditHistory::Action::paste:
        return tr("Paste Edits");
    }
    return {};
}

/// Of a step back or forth: "Undo Exposure".
CommandState stepState(const QString& title, const QString& titleOfStep,
                       const std::optional<EditHistory::Name>& step) {
    return {step ? titleOfStep.arg(name(*step)) : title, step.has_value()};
}

CommandState pasteState(const LibraryViewModel& library, const EditHistory& edits) {
    const auto* focused = library.focusedItem();
    // As many as `editTargets` has.
    const auto& marked = library.checkedIDs();
    const auto isOneOfMany = focused && marked.size() > 1 && library.isChecked(focused->url);
    const auto isPhoto = focused && focused->kind() != MediaKind::video;
    const auto count = isOneOfMany ? marked.size() - marked.videos() : std::size_t{isPhoto};
    const auto title = count < 2
                           ? tr("Paste Edits")
                           : tr("Paste Edits to %1 Photos").arg(countText(static_cast<std::int64_t>(count)));
    return {title, count > 0 && edits.store().copiedAdjustments()};
}

CommandState ejectState(const LibraryViewModel& library, bool isCopying) {
    const auto* volume = library.sourceVolume();
    if (!volume) return {tr("Eject"), false};
    return {tr("Eject “%1”").arg(text(volume->name)), library.ejectingVolumeID().isEmpty() && !isCopying};
}

CommandState inspectorState(const QString& title, InspectorTab tab, const LibraryViewModel& library) {
    return {title, true, library.showsInspector() && library.inspectorTab() == tab};
}

} // namespace

std::vector<FileURL> editTargets(const LibraryViewModel& library) {
    const auto* focused = library.focusedItem();
    std::vector<FileURL> photos;
    if (!focused) return photos;
    for (auto& item : library.actionTargets(*focused)) {
        if (item.kind() != MediaKind::video) photos.push_back(std::move(item.url));
    }
    return photos;
}

CommandState commandState(const WindowCommand& command, const LibraryViewModel& library,
                          const EditHistory& edits, const QWidget& window) {
    const auto hasFocus = library.focusedItem() != nullptr;
    const auto hasMarks = !library.checkedIDs().empty();
    const auto isCopying = library.isCopying();
    const auto isLoupe = library.viewMode() == ViewMode::loupe;
    switch (command.kind) {
    case Kind::openFolder:
        return {tr("Open Folder…")};
    case Kind::ejectSource:
        return ejectState(library, isCopying);

    case Kind::undo:
        return stepState(tr("Undo"), tr("Undo %1"), edits.undoName());
    case Kind::redo:
        return stepState(tr("Redo"), tr("Redo %1"), edits.redoName());
    case Kind::copyEdits:
        return {tr("Copy Edits"), hasFocus && library.focusedItem()->kind() != MediaKind::video};
    case Kind::pasteEdits:
        return pasteState(library, edits);

    case Kind::toggleMark: {
        const auto isMarked = hasFocus && library.isChecked(library.focusedID());
        return {isMarked ? tr("Unmark for Copy") : tr("Mark for Copy"), hasFocus};
    }
    case Kind::rate:
        return ratingState(command.stars, library);
    case Kind::copyMarked:
        return {tr("Copy Marked Files"), hasMarks && !isCopying && !library.isDeleting()};
    case Kind::deletePhotos:
        return {tr("Delete…"), hasFocus && !library.isDeleting()};
    case Kind::clearMarks:
        return {tr("Clear Marks"), hasMarks};
    case Kind::showInFileManager:
        return {tr("Show in Finder"), hasFocus};

    case Kind::toggleViewMode:
        return {isLoupe ? tr("Show Grid") : tr("Show Single Image"), hasFocus};
    case Kind::toggleInfo:
        return inspectorState(tr("Info"), InspectorTab::info, library);
    case Kind::toggleEdit:
        return inspectorState(tr("Edit"), InspectorTab::edit, library);
    case Kind::togglePresets:
        return inspectorState(tr("Presets"), InspectorTab::presets, library);
    case Kind::zoomIn:
        return {tr("Zoom In"), isLoupe};
    case Kind::zoomOut:
        return {tr("Zoom Out"), isLoupe};
    case Kind::zoomToFit:
        return {tr("Zoom to Fit"), isLoupe};
    case Kind::toggleZoom:
        return {tr("Toggle Fit / 100%"), isLoupe};
    case Kind::focusSearch:
        return {tr("Find File Names"), !library.items().empty()};
    case Kind::toggleFullScreen:
        return {window.isFullScreen() ? tr("Leave Full Screen") : tr("Full Screen")};

    case Kind::importPresets:
        return {tr("Import Presets…")};
    case Kind::showAbout:
        return {tr("About Kelvara")};
    case Kind::showSettings:
        return {tr("Settings…")};
    case Kind::showShortcuts:
        return {tr("Keyboard Shortcuts")};
    case Kind::showSupport:
        return {tr("Support Kelvara")};
    case Kind::quit:
        return {tr("Quit Kelvara")};

    case Kind::moveLeft:
    case Kind::moveRight:
    case Kind::moveUp:
    case Kind::moveDown:
    case Kind::goBack:
    case Kind::focusPhotos:
    case Kind::toggleOverlays:
    case Kind::previousPreset:
    case Kind::nextPreset:
    case Kind::togglePresetBefore:
    case Kind::openMenus:
        break; // keys only
    }
    return {};
}

} // namespace kelvara
