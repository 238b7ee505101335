#include "views/RootView.h"

#include "library/SharingController.h"
#include "platform/Preferences.h"
#include "presets/EditStore.h"
#include "views/ClosingSheet.h"
#include "views/CopySheet.h"
#include "views/DeleteSheet.h"
#include "views/DropFrame.h"
#include "views/EmptyState.h"
#include "views/MainMenu.h"
#include "views/PresetImportDialog.h"
#include "views/PresetSheets.h"
#include "views/ShareProgressView.h"
#include "views/Sheet.h"
#include "views/SourceSidebar.h"
#include "views/Text.h"
#include "views/WindowFrameGuard.h"

#include <QApplication>
#include <QDragEnterEvent>
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
