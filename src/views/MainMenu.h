#pragma once

#include "library/LibraryViewModel.h"
#include "presets/EditHistory.h"
#include "views/CommandMenu.h"

#include <QMenuBar>

namespace kelvara {

class ShareMenuItems;

/// The menus of the main window, in it or where the desktop shows menus.
class MainMenu : public QMenuBar {
    Q_OBJECT

public:
    /// `window` is the main window; the others outlive the menus.
    MainMenu(LibraryViewModel& library, EditHistory& edits, const ShareMenuItems& sharing, QWidget* window);

    void openFirst();
    void refresh();

signals:
    void chosen(const kelvara::WindowCommand& command);

private:
    CommandMenu* add(CommandMenu* menu);
    void addApplicationMenu();
    void addFileMenu(const ShareMenuItems& sharing);
    void addEditMenu();
    void addViewMenu();

    LibraryViewModel& m_library;
    EditHistory& m_edits;
    std::vector<CommandMenu*> m_menus;
    QMenu* m_shareMenu;
    std::vector<Subscription> m_subscriptions;
};

} // namespace kelvara
