#include "views/RootView.h"

#include "library/SharingController.h"
#include "platform/Desktop.h"
#include "platform/Preferences.h"
#include "presets/EditHistory.h"
#include "presets/EditStore.h"
#include "views/ClosingSheet.h"
#include "views/CopySheet.h"
#include "views/DeleteSheet.h"
#include "views/DropFrame.h"
#include "views/EmptyState.h"
#include "views/MainMenu.h"
#include "views/PhotoContextMenu.h"
#include "views/PresetImportDialog.h"
#include "views/PresetSheets.h"
#include "views/ShareProgressView.h"
#include "views/Sheet.h"
#include "views/SideWindow.h"
#include "views/SideWindows.h"
#include "views/SourceSidebar.h"
#include "views/Text.h"
#include "views/WindowFrameGuard.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QScreen>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace kelvara {

namespace {

constexpr QSize usualSize{1320, 860};
constexpr QSize smallestSize{760, 480};
constexpr int usualSidebarWidth = 244;
constexpr std::string_view frameKey = "windowFrame";
constexpr std::string_view sidebarKey = "sidebarWidth";

/// What is dragged in from elsewhere. The window's own photos are on their way to another program.
std::vector<FileURL> foreignPaths(const QDropEvent& event) {
    return event.source() ? std::vector<FileURL>{} : droppedPaths(*event.mimeData());
}

} // namespace

RootView::RootView(const Services& services, PhotoCanvases canvases)
    : m_library{services.library}, m_presets{services.presets}, m_edits{services.edits},
      m_editHistory{services.editHistory}, m_preferences{services.preferences}, m_desktop{services.desktop},
      m_sideWindows{services.sideWindows}, m_sharing{services.sharing}, m_shareItems{m_library, m_presets,
                                                                                     m_edits, m_sharing},
      m_onDrop{services.onDrop}, m_thumbnails{canvases.thumbnails} {
    setMinimumSize(smallestSize);
    setAcceptDrops(true);
    m_menu = new MainMenu{m_library, m_editHistory, m_shareItems, this};
    connect(m_menu, &MainMenu::chosen, this, &RootView::perform);
    m_splitter = new QSplitter{Qt::Horizontal, this};
    m_splitter->setHandleWidth(1);
    m_splitter->setChildrenCollapsible(false);
    m_content = new LibraryContentView{m_library, m_preferences, m_shareItems, std::move(canvases)};
    new ShareProgressView{m_sharing, m_content};
    auto* sidebar = new SourceSidebar{m_library, m_desktop};
    connect(sidebar, &SourceSidebar::supportRequested, this,
            [this] { perform({WindowCommand::Kind::showSupport}); });
    m_splitter->addWidget(sidebar);
    m_splitter->addWidget(m_content);
    m_splitter->setStretchFactor(0, 0);
    m_splitter->setStretchFactor(1, 1);
    connect(m_splitter, &QSplitter::splitterMoved, this,
            [this, sidebar] { m_preferences.setInteger(sidebarKey, sidebar->width()); });
    auto* column = new QVBoxLayout{this};
    column->setContentsMargins(0, 0, 0, 0);
    column->setMenuBar(m_menu);
    column->addWidget(m_splitter);

    m_dropFrame = new DropFrame{this};
    m_copySheetFrame = new Sheet{this};
    m_deleteSheetFrame = new Sheet{this};
    m_alertFrame = new Sheet{this};
    m_closingFrame = new Sheet{this};
    m_presetFrame = new Sheet{this};
    m_frameGuard = new WindowFrameGuard{*this};
    m_copySheet = new CopySheet{m_library, m_desktop, m_sharing, *m_copySheetFrame, this};
    m_closingSheet = new ClosingSheet{m_library, *m_closingFrame, *this};
    m_presetSheets = new PresetSheets{m_presets, *m_presetFrame, this};
    for (auto* sheet : {m_copySheetFrame, m_deleteSheetFrame, m_alertFrame, m_closingFrame, m_presetFrame}) {
        connect(sheet, &Sheet::didShowOrHide, m_menu, [this] {
            m_menu->setEnabled(!hasSheet());
            m_menu->refresh();
        });
    }

    using P = LibraryProperty;
    m_subscriptions.push_back(
        m_library.observe({P::sourceURL, P::volumes}, [this](const auto&) { refreshTitle(); }));
    m_subscriptions.push_back(
        m_library.observe({P::pendingDeletion}, [this](const auto&) { showDeleteSheet(); }));
    m_subscriptions.push_back(m_library.observe({P::ratingSaveError, P::ejectError, P::deleteError},
                                                [this](const auto&) { showNextAlert(); }));
    m_subscriptions.push_back(
        m_edits.observe({EditProperty::saveError}, [this](const auto&) { showNextAlert(); }));
    m_subscriptions.push_back(
        m_sharing.observe({SharingProperty::error}, [this](const auto&) { showNextAlert(); }));
    refreshTitle();
    restoreGeometryOr(usualSize);
    m_content->focusPhotos();
    qApp->installEventFilter(this);
}

void RootView::refreshTitle() {
    const auto title = sourceTitle(m_library);
    setWindowTitle(title.isEmpty() ? QCoreApplication::applicationName() : title);
}

void RootView::restoreGeometryOr(const QSize& size) {
    const auto saved = m_preferences.text(frameKey);
    if (!saved || !restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(*saved)))) {
        resize(size.boundedTo(screen()->availableSize() * 0.92));
    }
    restoreSidebarWidth();
}

void RootView::saveFrame() { m_preferences.setText(frameKey, saveGeometry().toBase64().toStdString()); }

void RootView::restoreSidebarWidth() {
    const auto width = static_cast<int>(m_preferences.integer(sidebarKey).value_or(usualSidebarWidth));
    m_splitter->setSizes({width, std::max(1, this->width() - width)});
}

void RootView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    restoreSidebarWidth(); // what a narrow window took from it
}

void RootView::keepSize(const QSize& size) {
    delete std::exchange(m_frameGuard, nullptr);
    resize(size);
}

void RootView::closeEvent(QCloseEvent* event) {
    saveFrame();
    if (!m_closingSheet->canClose()) return event->ignore();
    QWidget::closeEvent(event);
}

void RootView::closeWithoutAsking() { m_closingSheet->closeSoon(); }

void RootView::bringToFront() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void RootView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange) m_menu->refresh();
}

void RootView::dragEnterEvent(QDragEnterEvent* event) {
    if (hasSheet() || foreignPaths(*event).empty()) return;
    event->setDropAction(Qt::LinkAction); // nothing is moved or copied
    event->accept();
    m_dropFrame->showOverParent();
}

void RootView::dragLeaveEvent(QDragLeaveEvent*) { m_dropFrame->hide(); }

void RootView::dropEvent(QDropEvent* event) {
    m_dropFrame->hide();
    const auto paths = foreignPaths(*event);
    if (paths.empty()) return;
    event->acceptProposedAction();
    // Presets come in wherever they are dropped; anything else stands for a folder of photos.
    auto presets = presetFilesAmong(paths);
    presets.empty() ? m_onDrop(paths.front()) : importPresets(std::move(presets));
}

bool RootView::hasSheet() const {
    const auto sheets = {m_copySheetFrame, m_deleteSheetFrame, m_alertFrame, m_closingFrame, m_presetFrame};
    return std::ranges::any_of(sheets, [](const auto* sheet) { return sheet->isVisible(); });
}

bool RootView::isSettled() const {
    const auto* sheet = qobject_cast<DeleteSheet*>(m_deleteSheetFrame->content());
    return m_content->isSettled() && !(sheet && sheet->isLoading());
}

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

void RootView::showDeleteSheet() {
    if (!m_library.pendingDeletion()) return m_deleteSheetFrame->dismiss();
    auto* sheet = new DeleteSheet{m_library, m_thumbnails};
    m_deleteSheetFrame->present(sheet);
    m_deleteSheetFrame->setButtons(sheet->defaultButton(), sheet->cancelButton());
}

void RootView::showNextAlert() {
    const auto present = [this](const QString& title, const std::string& message, auto clear) {
        auto* alert = new AlertView{title, text(message)};
        m_alertFrame->present(alert);
        m_alertFrame->setButtons(alert->defaultButton(), alert->defaultButton());
        connect(alert->defaultButton(), &QPushButton::clicked, this, clear);
    };
    if (!m_library.ratingSaveError().empty()) {
        present(tr("Rating Not Saved"), m_library.ratingSaveError(),
                [this] { m_library.clearRatingSaveError(); });
    } else if (!m_library.ejectError().empty()) {
        present(tr("Couldn't Eject"), m_library.ejectError(), [this] { m_library.clearEjectError(); });
    } else if (!m_library.deleteError().empty()) {
        present(tr("Couldn't Delete"), m_library.deleteError(), [this] { m_library.clearDeleteError(); });
    } else if (!m_sharing.error().empty()) {
        present(tr("Couldn't Share"), m_sharing.error(), [this] { m_sharing.clearError(); });
    } else if (!m_edits.saveError().empty()) {
        present(tr("Edits Not Saved"), m_edits.saveError(), [this] { m_edits.clearSaveError(); });
    } else {
        m_alertFrame->dismiss();
    }
}

} // namespace kelvara
