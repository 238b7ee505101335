#include "app/KelvaraApp.h"

#include "views/EditInspector.h"
#include "views/LoupeView.h"
#include "views/MetadataInspector.h"
#include "views/PhotoGridView.h"
#include "views/PresetInspector.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QSysInfo>
#include <QTimer>
#include <QUrl>

namespace kelvara {

namespace {

/// Scans, and copies, which start threads of their own.
constexpr unsigned backgroundThreads = 3;

CopyService::SidecarWriter sidecarWriter(XMPService& sidecars) {
    return [&sidecars](const FileURL& sidecar, Rating rating) -> Result<void, std::string> {
        const auto written = sidecars.setRating(rating, sidecar);
        if (!written) return Failure{message(written.error())};
        return {};
    };
}

FileURL temporaryFolder() { return FileURL{QFile::encodeName(QDir::tempPath()).toStdString()}; }

void callLater(std::chrono::milliseconds delay, std::function<void()> job) {
    QTimer::singleShot(delay, std::move(job));
}

} // namespace

KelvaraApp::KelvaraApp(const Options& options)
    : m_preferences{options.preferencesPath}, m_settings{m_preferences},
      m_analyticsService{QUrl{options.countsUsage ? QStringLiteral(KELVARA_ANALYTICS_URL) : QString{}},
                         {QCoreApplication::applicationVersion(), QSysInfo::prettyProductName()}},
      m_analytics{m_settings, m_analyticsService}, m_volumes{QDBusConnection::systemBus()},
      m_desktop{QDBusConnection::sessionBus(), [] { QApplication::beep(); }},
      m_launcherProgress{QDBusConnection::sessionBus(), QGuiApplication::desktopFileName()},
      m_sleepInhibitor{QDBusConnection::systemBus()}, m_notifier{QDBusConnection::sessionBus(),
                                                                 QGuiApplication::desktopFileName(),
                                                                 [this] { m_window->bringToFront(); }},
      m_locale{QLocale{}.bcp47Name().toStdString()}, m_volumeService{m_volumes, m_locale},
      m_sidecars{m_files}, m_copier{m_files, sidecarWriter(m_sidecars)}, m_shares{m_files, temporaryFolder()},
      m_images{m_main}, m_memoryPressure{[this] {
          m_images.shrinkCaches();
          m_presetRenderer.shrinkCache();
      }},
      m_background{backgroundThreads}, m_desktopSharing{m_desktop, m_background, m_main},
      m_presetWatch{m_main}, m_presets{{.files = m_files,
                                        .trash = m_trash,
                                        .watch = m_presetWatch,
                                        .desktop = m_desktop,
                                        .preferences = m_preferences,
                                        .background = m_background,
                                        .main = m_main,
                                        .folder = options.dataFolder.child("Presets"),
                                        .collationLocale = m_locale}},
      m_presetRenderer{m_images.rendering(), m_main}, m_editWrites{1, ThreadPool::AtEnd::finish},
      m_edits{m_files, options.dataFolder.child("Edits.json"), m_editWrites, m_main, callLater},
      m_sidecarWrites{1, ThreadPool::AtEnd::finish}, m_sharing{{.shares = m_shares,
                                                                .picker = m_desktopSharing.picker(),
                                                                .settings = m_settings,
                                                                .analytics = m_analytics,
                                                                .background = m_background,
                                                                .main = m_main}},
      m_sideWindows{m_settings, QUrl{QStringLiteral(KELVARA_SUPPORT_URL)}} {
    const LibraryServices services{
        .files = m_files,
        .trash = m_trash,
        .background = m_background,
        .sidecarWrites = m_sidecarWrites,
        .main = m_main,
        .preferences = m_preferences,
        .volumes = m_volumeService,
        .sidecars = m_sidecars,
        .copier = m_copier,
        .folderChooser = m_folderChooser,
        .desktop = m_desktop,
        .analytics = m_analytics,
        .onShare = [this](auto files, const auto& anchor,
                          const auto& look) { m_sharing.shareFiles(std::move(files), anchor, look); },
        .makeShareFolder = [this] { return m_shares.makeJobFolder(); },
        .emptyImageCaches =
            [this] {
                m_images.emptyCaches();
                m_presetRenderer.emptyCaches();
            },
        .collationLocale = m_locale};
    m_analytics.record(AppStarted{});
    m_library = std::make_unique<LibraryViewModel>(services, options.folder);
    m_window = std::make_unique<RootView>(
        RootView::Services{.library = *m_library,
                           .presets = m_presets,
                           .edits = m_edits,
                           .editHistory = m_editHistory,
                           .preferences = m_preferences,
                           .desktop = m_desktop,
                           .sideWindows = m_sideWindows,
                           .sharing = m_sharing,
                           .onDrop = [this](const FileURL& path) { openDropped(path); }},
        makeCanvases());
    m_folderChooser.setWindow(m_window.get());
    m_desktopSharing.picker().setWindow(m_window.get());
    QObject::connect(m_grid, &PhotoGridView::photoMenuRequested, m_window.get(), &RootView::showPhotoMenu);
    QObject::connect(m_loupe, &LoupeView::photoMenuRequested, m_window.get(), &RootView::showPhotoMenu);
    m_copyActivity =
        std::make_unique<CopyActivity>(*m_library, m_launcherProgress, m_sleepInhibitor, m_notifier,
                                       [] { return QApplication::activeWindow() != nullptr; });
    QObject::connect(m_editInspector, &EditInspector::chosen, m_window.get(), &RootView::perform);
    connectPresets();
    m_screenColors = std::make_unique<ScreenColorSpaceObserver>(
        *m_window, QDBusConnection::systemBus(), m_files, m_background, m_main, [this] { reloadPictures(); });
    if (!options.folder.isEmpty())
        m_library->openRecentFolder(options.folder); // so that it is among the recents
}

KelvaraApp::~KelvaraApp() = default;

PhotoCanvases KelvaraApp::makeCanvases() {
    const ThumbnailSources thumbnails{m_images.thumbnails(), m_edits, m_images.thumbnailRenderer()};
    m_grid = new PhotoGridView{*m_library, thumbnails, m_images.metadata(), m_preferences};
    m_gridInfo =
        m_settings.observe({Setting::gridShowsInfo}, [this](const auto&) { m_grid->readPreferences(); });
    m_loupe = new LoupeView{*m_library, thumbnails,       m_images.previews(),  m_images.metadata(),
                            m_presets,  m_presetRenderer, m_images.rendering(), m_main};
    auto* info = new MetadataInspector{*m_library, m_images.metadata()};
    m_presetInspector =
        new PresetInspector{*m_library, m_presets, m_images.thumbnails(), m_images.presetTiles()};
    m_editInspector = new EditInspector{{.library = *m_library,
                                         .presets = m_presets,
                                         .edits = m_editHistory,
                                         .preferences = m_preferences,
                                         .loupe = *m_loupe,
                                         .rendering = m_images.rendering(),
                                         .main = m_main}};
    return {.grid = m_grid,
            .setThumbnailSize = [grid = m_grid](double side) { grid->setThumbnailSize(side); },
            .isGridLoading = [grid = m_grid] { return grid->isLoading(); },
            .loupe = m_loupe,
            .isLoupeLoading = [loupe = m_loupe] { return loupe->isLoading(); },
            .togglePresetBefore = [loupe = m_loupe] { loupe->toggleBefore(); },
            .inspector = {.info = info, .edit = m_editInspector, .presets = m_presetInspector},
            .isInspectorLoading =
                [info, edit = m_editInspector, presets = m_presetInspector] {
                    return info->isLoading() || edit->isLoading() || presets->isLoading();
                },
            .thumbnails = thumbnails};
}

void KelvaraApp::connectPresets() {
    using View = PresetInspector;
    QObject::connect(m_presetInspector, &View::filesRequested, m_window.get(), &RootView::choosePresetFiles);
    QObject::connect(m_presetInspector, &View::folderRequested, m_window.get(),
                     &RootView::choosePresetFolder);
    QObject::connect(m_presetInspector, &View::removalRequested, m_window.get(),
                     &RootView::confirmPresetRemoval);
}

void KelvaraApp::reloadPictures() {
    m_images.emptyPictureCaches();
    m_presetRenderer.emptyCaches();
    m_grid->reloadThumbnails();
    m_loupe->reloadPictures();
    m_presetInspector->reloadPictures();
}

void KelvaraApp::openDropped(const FileURL& path) {
    // A photo stands for the folder it lies in; which it is takes a look at the disk.
    m_background.post([this, path, lifetime = std::weak_ptr{m_lifetime}] {
        const auto status = m_files.status(path);
        const auto isFolder = status && status->kind == FileStatus::Kind::folder;
        m_main.post([this, lifetime, folder = isFolder ? path : path.parent()] {
            if (!lifetime.expired()) m_library->openRecentFolder(folder);
        });
    });
}

} // namespace kelvara
