#include "app/KelvaraApp.h"

#include "views/LoupeView.h"
#include "views/PhotoGridView.h"

#include <QApplication>
#include <QDBusConnection>
#include <QFile>
#include <QLocale>

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

} // namespace

KelvaraApp::KelvaraApp(const Options& options)
    : m_preferences{options.preferencesPath}, m_volumes{QDBusConnection::systemBus()},
      m_desktop{QDBusConnection::sessionBus(), [] { QApplication::beep(); }},
      m_locale{QLocale{}.bcp47Name().toStdString()}, m_volumeService{m_volumes, m_locale},
      m_sidecars{m_files}, m_copier{m_files, sidecarWriter(m_sidecars)}, m_images{m_main},
      m_memoryPressure{[this] { m_images.shrinkCaches(); }}, m_background{backgroundThreads},
      m_sidecarWrites{1, ThreadPool::AtEnd::finish} {
    const LibraryServices services{.files = m_files,
                                   .background = m_background,
                                   .sidecarWrites = m_sidecarWrites,
                                   .main = m_main,
                                   .preferences = m_preferences,
                                   .volumes = m_volumeService,
                                   .sidecars = m_sidecars,
                                   .copier = m_copier,
                                   .folderChooser = m_folderChooser,
                                   .desktop = m_desktop,
                                   .emptyImageCaches = [this] { m_images.emptyCaches(); },
                                   .collationLocale = m_locale};
    m_library = std::make_unique<LibraryViewModel>(services, options.folder);
    m_window = std::make_unique<RootView>(*m_library, m_preferences, m_desktop, makeCanvases(),
                                          [this](const FileURL& path) { openDropped(path); });
    m_folderChooser.setWindow(m_window.get());
    if (!options.folder.isEmpty())
        m_library->openRecentFolder(options.folder); // so that it is among the recents
}

KelvaraApp::~KelvaraApp() = default;

PhotoCanvases KelvaraApp::makeCanvases() {
    auto* grid = new PhotoGridView{*m_library, m_images.thumbnails(), m_preferences};
    auto* loupe =
        new LoupeView{*m_library, m_images.thumbnails(), m_images.previews(), m_images.rendering(), m_main};
    return {.grid = grid,
            .setThumbnailSize = [grid](double side) { grid->setThumbnailSize(side); },
            .isGridLoading = [grid] { return grid->isLoading(); },
            .loupe = loupe,
            .isLoupeLoading = [loupe] { return loupe->isLoading(); }};
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
