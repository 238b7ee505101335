#pragma once

#include "library/LibraryViewModel.h"
#include "views/CommandMenu.h"

#include <QMenuBar>

namespace kelvara {

/// The menus of the main window, in it or where the desktop shows menus.
class MainMenu : public QMenuBar {
    Q_OBJECT

public:
    /// `window` is the main window; the library outlives the menus.
    MainMenu(LibraryViewModel& library, QWidget* window);

    void openFirst();
    void refresh();

signals:
    void chosen(const kelvara::WindowCommand& command);

private:
    CommandMenu* add(CommandMenu* menu);
    void addApplicationMenu();
    void addFileMenu();
    void addViewMenu();

    LibraryViewModel& m_library;
    std::vector<CommandMenu*> m_menus;
    Subscription m_subscription;
};

} // namespace kelvara
