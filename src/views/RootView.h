#pragma once

#include "library/LibraryViewModel.h"
#include "views/LibraryContentView.h"
#include "views/ShareMenuItems.h"
#include "views/WindowKeys.h"

class QSplitter;

namespace kelvara {

class ClosingSheet;
class CopySheet;
class DeleteSheet;
class DropFrame;
class EditHistory;
class EditStore;
class MainMenu;
class PresetSheets;
class PresetStore;
class SharingController;
class Sheet;
class SideWindows;
class WindowFrameGuard;

/// The main window: the sources at the left, their photos at the right.
class RootView : public QWidget {
    Q_OBJECT

public:
    /// What the window works with; everything outlives it.
    struct Services {
        LibraryViewModel& library;
        PresetStore& presets;
        EditStore& edits;
        EditHistory& editHistory;
        Preferences& preferences;
        Desktop& desktop;
        SideWindows& sideWindows;
        SharingController& sharing;
        std::function<void(const FileURL&)>
            onDrop; ///< A person dropped a path onto the window, maybe of a file.
    };

    RootView(const Services& services, PhotoCanvases canvases);

    [[nodiscard]] bool isSettled() const;
    void perform(const WindowCommand& command);
    /// What can be done with the focused photo, as a menu beside it.
    void showPhotoMenu(const QPoint& screenPoint);
    [[nodiscard]] PresetStore& presets() { return m_presets; }
    [[nodiscard]] EditHistory& edits() { return m_editHistory; }
    /// Asks which files of presets, or which folder of them, to import.
    void choosePresetFiles();
    void choosePresetFolder();
    /// Asks whether the preset is to go, and moves it to the Trash.
    void confirmPresetRemoval(const std::string& presetID);
    /// Keeps the size it is given, even where that is larger than the screen: for pictures of the window.
    void keepSize(const QSize& size);
    void bringToFront();
    /// Stops a copy that runs, and closes once the files in progress have finished.
    void closeWithoutAsking();

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    /// Sees every key before the widget that has the focus.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void restoreGeometryOr(const QSize& usualSize);
    void restoreSidebarWidth();
    void saveFrame();
    void showDeleteSheet();
    void showNextAlert();
    void toggleFullScreen();
    void goBack();
    void refreshTitle();
    [[nodiscard]] bool hasSheet() const;
    [[nodiscard]] bool showsPresets() const;
    void importPresets(std::vector<FileURL> sources);
    void stepPreset(bool forward);
    void copyEdits();
    /// Goes where something changed, if nothing that is in sight did.
    void showEdited(const std::vector<FileURL>& photos);

    LibraryViewModel& m_library;
    PresetStore& m_presets;
    EditStore& m_edits;
    EditHistory& m_editHistory;
    Preferences& m_preferences;
    Desktop& m_desktop;
    SideWindows& m_sideWindows;
    SharingController& m_sharing;
    ShareMenuItems m_shareItems;
    std::function<void(const FileURL&)> m_onDrop;
    std::optional<ThumbnailSources> m_thumbnails;
    MainMenu* m_menu;
    QSplitter* m_splitter;
    LibraryContentView* m_content;
    DropFrame* m_dropFrame;
    Sheet* m_copySheetFrame;
    Sheet* m_deleteSheetFrame;
    Sheet* m_alertFrame;
    Sheet* m_closingFrame;
    Sheet* m_presetFrame;
    CopySheet* m_copySheet;
    ClosingSheet* m_closingSheet;
    PresetSheets* m_presetSheets;
    WindowFrameGuard* m_frameGuard;
    std::vector<Subscription> m_subscriptions;
};

} // namespace kelvara
