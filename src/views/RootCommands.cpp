// RootView: the keys, and what commands do.

#include "platform/Desktop.h"
#include "presets/EditHistory.h"
#include "presets/EditStore.h"
#include "views/MainMenu.h"
#include "views/PhotoContextMenu.h"
#include "views/PresetImportDialog.h"
#include "views/PresetSheets.h"
#include "views/RootView.h"
#include "views/SideWindow.h"
#include "views/SideWindows.h"

#include <QApplication>
#include <QKeyEvent>

#include <algorithm>
#include <utility>

namespace kelvara {

bool RootView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || QApplication::activePopupWidget()) return false;
    const auto* receiver = qobject_cast<const QWidget*>(watched);
    if (!receiver || QApplication::activeModalWidget()) return false;
    const auto* window = receiver->window();
    const auto isBeside = qobject_cast<const SideWindow*>(window) && window->parentWidget() == this;
    if (window != this && !isBeside) return false;
    // A key that nobody takes travels up through the parents; the window looks at it once.
    if (window->focusWidget() && receiver != window->focusWidget()) return false;
    const auto& key = *static_cast<const QKeyEvent*>(event);
    const auto command = windowCommand(latinKey(key.key(), key.nativeScanCode()), key.modifiers(),
                                       keyFocus(receiver), m_library.viewMode());
    if (!command || (isBeside && !command->isForEveryWindow())) return false;
    if (hasSheet() && command->kind != WindowCommand::Kind::quit) return false;
    if (!key.isAutoRepeat() || command->repeats()) perform(*command);
    return true;
}

void RootView::perform(const WindowCommand& command) {
    using Kind = WindowCommand::Kind;
    const auto zoom = [this](ZoomRequest::Command request) { m_library.requestZoom(request); };
    const auto& focused = m_library.focusedID();
    switch (command.kind) {
    case Kind::moveLeft:
        return m_library.moveFocus(MoveDirection::left);
    case Kind::moveRight:
        return m_library.moveFocus(MoveDirection::right);
    case Kind::moveUp:
        return m_library.moveFocus(MoveDirection::up);
    case Kind::moveDown:
        return m_library.moveFocus(MoveDirection::down);
    case Kind::toggleViewMode:
        return m_library.toggleViewMode();
    case Kind::goBack:
        return goBack();
    case Kind::focusSearch:
        return m_library.focusSearch();
    case Kind::focusPhotos:
        return m_library.requestKeyFocus();
    case Kind::toggleMark:
        if (!focused.isEmpty()) m_library.toggleChecked(FileURL{focused});
        return;
    case Kind::rate:
        if (!focused.isEmpty()) m_library.setRating(*Rating::fromRawValue(command.stars), FileURL{focused});
        return;
    case Kind::copyMarked:
        return m_library.startCopy();
    case Kind::deletePhotos:
        return m_library.requestDeleteForFocused();
    case Kind::clearMarks:
        return m_library.clearMarks();
    case Kind::showInFileManager:
        if (!focused.isEmpty()) m_desktop.showInFileManager(FileURL{focused});
        return;
    case Kind::toggleZoom:
        return zoom(ZoomRequest::Command::toggle);
    case Kind::zoomIn:
        return zoom(ZoomRequest::Command::zoomIn);
    case Kind::zoomOut:
        return zoom(ZoomRequest::Command::zoomOut);
    case Kind::zoomToFit:
        return zoom(ZoomRequest::Command::fit);
    case Kind::toggleInfo:
        return m_library.toggleInspector(InspectorTab::info);
    case Kind::toggleEdit:
        return m_library.toggleInspector(InspectorTab::edit);
    case Kind::togglePresets:
        return m_library.toggleInspector(InspectorTab::presets);
    case Kind::previousPreset:
        return stepPreset(false);
    case Kind::nextPreset:
        return stepPreset(true);
    case Kind::toggleOverlays:
        return m_library.setShowsLoupeOverlays(!m_library.showsLoupeOverlays());
    case Kind::togglePresetBefore:
        return m_content->togglePresetBefore();
    case Kind::openFolder:
        return m_library.chooseFolder();
    case Kind::ejectSource:
        if (const auto* volume = m_library.sourceVolume()) m_library.eject(VolumeInfo{*volume});
        return;
    case Kind::toggleFullScreen:
        return toggleFullScreen();
    case Kind::openMenus:
        return m_menu->openFirst();
    case Kind::showAbout:
        return m_sideWindows.show(SideWindows::Identifier::about, *this);
    case Kind::showSettings:
        return m_sideWindows.show(SideWindows::Identifier::settings, *this);
    case Kind::showShortcuts:
        return m_sideWindows.show(SideWindows::Identifier::shortcuts, *this);
    case Kind::showSupport:
        return m_sideWindows.show(SideWindows::Identifier::support, *this);
    case Kind::undo:
        return showEdited(m_editHistory.undo());
    case Kind::redo:
        return showEdited(m_editHistory.redo());
    case Kind::copyEdits:
        return copyEdits();
    case Kind::pasteEdits:
        return m_editHistory.paste(editTargets(m_library));
    case Kind::importPresets:
        return choosePresetFiles();
    case Kind::quit:
        close();
        return;
    }
}

void RootView::showPhotoMenu(const QPoint& screenPoint) {
    auto* menu = new PhotoContextMenu{m_library, m_editHistory, m_shareItems, this};
    menu->setAttribute(Qt::WA_DeleteOnClose);
    connect(menu, &CommandMenu::chosen, this, &RootView::perform);
    menu->popup(screenPoint);
}

bool RootView::showsPresets() const {
    return m_library.showsInspector() && m_library.inspectorTab() == InspectorTab::presets;
}

void RootView::stepPreset(bool forward) {
    // Nothing that shows a preset, nothing to step through.
    if (m_library.viewMode() != ViewMode::loupe && !showsPresets()) return;
    forward ? m_presets.selectNext() : m_presets.selectPrevious();
}

void RootView::copyEdits() {
    const auto* item = m_library.focusedItem();
    if (item && item->kind() != MediaKind::video) m_edits.copyAdjustments(item->url);
}

void RootView::showEdited(const std::vector<FileURL>& photos) {
    const auto& focused = m_library.focusedID();
    const auto isFocused = [&](const FileURL& photo) { return photo.stemKey() == focused.stemKey(); };
    if (std::ranges::any_of(photos, isFocused)) return;
    const auto isVisible = [this](const FileURL& photo) { return m_library.visibleIndex(photo).has_value(); };
    const auto visible = std::ranges::find_if(photos, isVisible);
    if (visible != photos.end()) m_library.setFocusedID(*visible);
}

void RootView::importPresets(std::vector<FileURL> sources) {
    if (!showsPresets()) m_library.toggleInspector(InspectorTab::presets);
    m_presets.importPresets(std::move(sources));
}

void RootView::choosePresetFiles() {
    kelvara::choosePresetFiles(*this, [this](auto sources) { importPresets(std::move(sources)); });
}

void RootView::choosePresetFolder() {
    kelvara::choosePresetFolder(*this, [this](auto sources) { importPresets(std::move(sources)); });
}

void RootView::confirmPresetRemoval(const std::string& presetID) { m_presetSheets->confirmRemoval(presetID); }

void RootView::goBack() {
    if (keyFocus(focusWidget()) != KeyFocus::photos) return m_library.requestKeyFocus();
    if (m_library.viewMode() == ViewMode::loupe) return m_library.showGrid();
    if (isFullScreen()) toggleFullScreen();
}

void RootView::toggleFullScreen() { setWindowState(windowState() ^ Qt::WindowFullScreen); }

} // namespace kelvara
