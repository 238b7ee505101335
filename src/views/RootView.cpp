#include "views/RootView.h"

#include "platform/Desktop.h"
#include "platform/Preferences.h"
#include "views/CopySheet.h"
#include "views/EmptyState.h"
#include "views/LocalURL.h"
#include "views/MainMenu.h"
#include "views/PhotoCommands.h"
#include "views/Sheet.h"
#include "views/SideWindow.h"
#include "views/SideWindows.h"
#include "views/SourceSidebar.h"
#include "views/Text.h"
#include "views/WindowFrameGuard.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QScreen>
#include <QSplitter>
#include <QVBoxLayout>

#include <utility>

namespace kelvara {

namespace {

constexpr QSize usualSize{1320, 860};
constexpr QSize smallestSize{760, 480};
constexpr int usualSidebarWidth = 244;
constexpr std::string_view frameKey = "windowFrame";
constexpr std::string_view sidebarKey = "sidebarWidth";

/// Shows that the window takes what is dragged over it.
class DropFrame : public QWidget {
public:
    explicit DropFrame(QWidget* parent) : QWidget{parent} {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        const auto& theme = Theme::current();
        auto veil = theme.accent;
        veil.setAlpha(0x18);
        QPainter painter{this};
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen{theme.accent, 3});
        painter.setBrush(veil);
        painter.drawRoundedRect(QRectF{rect()}.adjusted(6, 6, -6, -6), radius::sheet, radius::sheet);
    }
};

/// The first local path that is dragged in; the file system is not asked. Empty for the window's own photos,
/// which are on their way to another program.
FileURL droppedPath(const QDropEvent& event) {
    if (event.source()) return {};
    for (const auto& url : event.mimeData()->urls()) {
        if (url.isLocalFile()) return fromQUrl(url);
    }
    return {};
}

} // namespace

RootView::RootView(LibraryViewModel& library, Preferences& preferences, Desktop& desktop,
                   SideWindows& sideWindows, PhotoCanvases canvases,
                   std::function<void(const FileURL&)> onDrop)
    : m_library{library}, m_preferences{preferences}, m_desktop{desktop},
      m_sideWindows{sideWindows}, m_onDrop{std::move(onDrop)} {
    setMinimumSize(smallestSize);
    setAcceptDrops(true);
    m_menu = new MainMenu{library, this};
    connect(m_menu, &MainMenu::chosen, this, &RootView::perform);
    m_splitter = new QSplitter{Qt::Horizontal, this};
    m_splitter->setHandleWidth(1);
    m_splitter->setChildrenCollapsible(false);
    m_content = new LibraryContentView{library, preferences, std::move(canvases)};
    auto* sidebar = new SourceSidebar{library, desktop};
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
    m_alertFrame = new Sheet{this};
    m_frameGuard = new WindowFrameGuard{*this};
    m_copySheet = new CopySheet{library, desktop, *m_copySheetFrame, this};
    for (auto* sheet : {m_copySheetFrame, m_alertFrame}) {
        connect(sheet, &Sheet::didShowOrHide, m_menu,
                [menu = m_menu, copySheet = m_copySheetFrame, alert = m_alertFrame] {
                    menu->setEnabled(!copySheet->isVisible() && !alert->isVisible());
                    menu->refresh();
                });
    }

    using P = LibraryProperty;
    m_subscriptions.push_back(
        m_library.observe({P::sourceURL, P::volumes}, [this](const auto&) { refreshTitle(); }));
    m_subscriptions.push_back(
        m_library.observe({P::ratingSaveError, P::ejectError}, [this](const auto&) { showNextAlert(); }));
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
    QWidget::closeEvent(event);
}

void RootView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange) m_menu->refresh();
}

void RootView::dragEnterEvent(QDragEnterEvent* event) {
    if (hasSheet() || droppedPath(*event).isEmpty()) return;
    event->setDropAction(Qt::LinkAction); // nothing is moved or copied
    event->accept();
    m_dropFrame->setGeometry(rect());
    m_dropFrame->raise();
    m_dropFrame->show();
}

void RootView::dragLeaveEvent(QDragLeaveEvent*) { m_dropFrame->hide(); }

void RootView::dropEvent(QDropEvent* event) {
    m_dropFrame->hide();
    if (const auto path = droppedPath(*event); !path.isEmpty()) {
        event->acceptProposedAction();
        m_onDrop(path);
    }
}

bool RootView::hasSheet() const { return m_copySheetFrame->isVisible() || m_alertFrame->isVisible(); }

bool RootView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || QApplication::activePopupWidget() || hasSheet()) return false;
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
    case Kind::copyEdits:
    case Kind::pasteEdits:
    case Kind::deletePhotos:
    case Kind::share:
    case Kind::importPresets:
        return; // see commandState
    case Kind::quit:
        close();
        return;
    }
}

void RootView::showPhotoMenu(const QPoint& screenPoint) {
    auto* menu = new PhotoCommands{this};
    menu->setAttribute(Qt::WA_DeleteOnClose);
    connect(menu, &CommandMenu::chosen, this, &RootView::perform);
    menu->refresh([this](const WindowCommand& command) { return commandState(command, m_library, *this); });
    menu->popup(screenPoint);
}

void RootView::goBack() {
    if (keyFocus(focusWidget()) != KeyFocus::photos) return m_library.requestKeyFocus();
    if (m_library.viewMode() == ViewMode::loupe) return m_library.showGrid();
    if (isFullScreen()) toggleFullScreen();
}

void RootView::toggleFullScreen() { setWindowState(windowState() ^ Qt::WindowFullScreen); }

void RootView::showNextAlert() {
    const auto present = [this](const QString& title, const std::string& message, auto clear) {
        auto* alert = new AlertView{title, text(message)};
        m_alertFrame->present(alert);
        m_alertFrame->setButtons(alert->button(), alert->button());
        connect(alert->button(), &QPushButton::clicked, this, clear);
    };
    if (!m_library.ratingSaveError().empty()) {
        present(tr("Rating Not Saved"), m_library.ratingSaveError(),
                [this] { m_library.clearRatingSaveError(); });
    } else if (!m_library.ejectError().empty()) {
        present(tr("Couldn't Eject"), m_library.ejectError(), [this] { m_library.clearEjectError(); });
    } else {
        m_alertFrame->dismiss();
    }
}

} // namespace kelvara
