#pragma once

#include "library/LibraryViewModel.h"
#include "presets/EditHistory.h"
#include "views/CommandMenu.h"

#include <QMenuBar>

namespace kelvara {

/// The menus of the main window, in it or where the desktop shows menus.
class MainMenu : public QMenuBar {
    Q_OBJECT

public:
    /// `window` is the main window; the others outlive the menus.
    MainMenu(LibraryViewModel& library, EditHistory& edits, QWidget* window);

    void openFirst();
    void refresh();

signals:
    void chosen(const kelvara::WindowCommand& command);

private:
    CommandMenu* add(CommandMenu* menu);
    void addApplicationMenu();
    void addFileMenu();
    void addEditMenu();
    void addViewMenu();

    LibraryViewModel& m_library;
    EditHistory& m_edits;
    std::vector<CommandMenu*> m_menus;
    std::vector<Subscription> m_subscriptions;
};

} // namespace kelvara
