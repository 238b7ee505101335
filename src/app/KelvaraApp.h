#pragma once

#include "app/CopyActivity.h"
#include "app/DesktopSharing.h"
#include "app/ImageServices.h"
#include "app/ScreenColorSpaceObserver.h"
#include "async/ThreadPool.h"
#include "library/AllowedAnalytics.h"
#include "library/LibraryViewModel.h"
#include "library/Settings.h"
#include "library/SharingController.h"
#include "platform/linux/DesktopNotifier.h"
#include "platform/linux/HTTPAnalytics.h"
#include "platform/linux/LauncherProgress.h"
#include "platform/linux/LinuxDesktop.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxFolderWatch.h"
#include "platform/linux/LinuxTrash.h"
#include "platform/linux/LogindInhibitor.h"
#include "platform/linux/MemoryPressure.h"
#include "platform/linux/QtMainExecutor.h"
#include "platform/linux/SettingsPreferences.h"
#include "platform/linux/UDisksVolumes.h"
#include "presets/EditHistory.h"
#include "presets/EditStore.h"
#include "presets/PresetRenderer.h"
#include "presets/PresetStore.h"
#include "services/CopyService.h"
#include "services/ShareService.h"
#include "services/VolumeService.h"
#include "services/XMPService.h"
#include "views/FolderChooserDialog.h"
#include "views/RootView.h"
#include "views/SideWindows.h"

#include <QString>

#include <memory>
#include <string>

namespace kelvara {

class EditInspector;
class LoupeView;
class PhotoGridView;
class PresetInspector;

/// Makes everything the application consists of, once, and puts it together.
class KelvaraApp {
public:
    struct Options {
        FileURL folder;          ///< Opened at start; empty for the remembered one.
        QString preferencesPath; ///< The file of the settings.
        FileURL dataFolder;      ///< Of imported presets and of the photos' edits.
        bool countsUsage = true; ///< Where the settings allow it, too.
    };

    explicit KelvaraApp(const Options& options);
    ~KelvaraApp();

    [[nodiscard]] LibraryViewModel& library() { return *m_library; }
    [[nodiscard]] PresetStore& presets() { return m_presets; }
    [[nodiscard]] RootView& window() { return *m_window; }
    [[nodiscard]] Preferences& preferences() { return m_preferences; }

private:
    PhotoCanvases makeCanvases();
    void connectPresets();
    void openDropped(const FileURL& path);
    /// All pictures in memory are in the colours of the old screen.
    void reloadPictures();

    // From the bottom up: what comes later uses what comes before, and goes first.
    SettingsPreferences m_preferences;
    Settings m_settings;
    HTTPAnalytics m_analyticsService;
    AllowedAnalytics m_analytics;
    QtMainExecutor m_main;
    LinuxFileSystem m_files;
    LinuxTrash m_trash;
    UDisksVolumes m_volumes;
    LinuxDesktop m_desktop;
    LauncherProgress m_launcherProgress;
    LogindInhibitor m_sleepInhibitor;
    DesktopNotifier m_notifier;
    FolderChooserDialog m_folderChooser;
    std::string m_locale;
    VolumeService m_volumeService;
    XMPService m_sidecars;
    CopyService m_copier;
    ShareService m_shares;
    ImageServices m_images;
    MemoryPressure m_memoryPressure;
    ThreadPool m_background;
    DesktopSharing m_desktopSharing;
    LinuxFolderWatch m_presetWatch;
    PresetStore m_presets;
    PresetRenderer m_presetRenderer;
    ThreadPool m_editWrites;
    EditStore m_edits;
    EditHistory m_editHistory{m_edits};
    ThreadPool m_sidecarWrites;
    SharingController m_sharing;
    SideWindows m_sideWindows;
    std::unique_ptr<LibraryViewModel> m_library;
    std::unique_ptr<RootView> m_window;
    PhotoGridView* m_grid = nullptr;              // the window's
    LoupeView* m_loupe = nullptr;                 // the window's
    PresetInspector* m_presetInspector = nullptr; // the window's
    EditInspector* m_editInspector = nullptr;     // the window's
    std::unique_ptr<CopyActivity> m_copyActivity;
    std::unique_ptr<ScreenColorSpaceObserver> m_screenColors;
    Subscription m_gridInfo;
    /// Expires with the application; answers that arrive later see it and do nothing.
    std::shared_ptr<int> m_lifetime = std::make_shared<int>(0);
};

} // namespace kelvara
