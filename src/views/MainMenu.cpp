#include "views/MainMenu.h"

#include "presets/EditStore.h"
#include "views/PhotoCommands.h"
#include "views/ShareMenuItems.h"
#include "views/ZoomCommands.h"

namespace kelvara {

using Kind = WindowCommand::Kind;

MainMenu::MainMenu(LibraryViewModel& library, EditHistory& edits, const ShareMenuItems& sharing,
                   QWidget* window)
    : QMenuBar{window}, m_library{library}, m_edits{edits} {
    addApplicationMenu();
    addFileMenu(sharing);
    addEditMenu();
    add(new PhotoCommands{this});
    addViewMenu();
    using P = LibraryProperty;
    m_subscriptions.push_back(
        m_library.observe({P::volumes, P::sourceURL, P::items, P::visibleItems, P::focusedID, P::checkedIDs,
                           P::ratings, P::copyState, P::deletingCount, P::ejectingVolumeID, P::viewMode,
                           P::showsInspector, P::inspectorTab},
                          [this](const auto&) { refresh(); }));
    m_subscriptions.push_back(
        m_edits.observe({EditHistoryProperty::names}, [this](const auto&) { refresh(); }));
    m_subscriptions.push_back(
        m_edits.store().observe({EditProperty::copiedAdjustments}, [this](const auto&) { refresh(); }));
    refresh();
}

CommandMenu* MainMenu::add(CommandMenu* menu) {
    addMenu(menu);
    connect(menu, &CommandMenu::chosen, this, &MainMenu::chosen);
    m_menus.push_back(menu);
    return menu;
}

void MainMenu::addApplicationMenu() {
    auto* menu = add(new CommandMenu{tr("&Kelvara"), this});
    menu->add({{Kind::showAbout}});
    menu->addSeparator();
    menu->add({{Kind::importPresets}, {Kind::showSettings}});
    menu->addSeparator();
    menu->add({{Kind::showShortcuts}, {Kind::showSupport}});
    menu->addSeparator();
    menu->add({{Kind::quit}});
}

void MainMenu::addFileMenu(const ShareMenuItems& sharing) {
    auto* menu = add(new CommandMenu{tr("&File"), this});
    menu->add({{Kind::openFolder}, {Kind::ejectSource}});
    menu->addSeparator();
    m_shareMenu = menu->addMenu(tr("Share"));
    connect(m_shareMenu, &QMenu::aboutToShow, this, [this, &sharing] {
        m_shareMenu->clear();
        sharing.addTo(*m_shareMenu);
    });
}

void MainMenu::addEditMenu() { add(new CommandMenu{tr("&Edit"), this})->add({{Kind::undo}, {Kind::redo}}); }

void MainMenu::addViewMenu() {
    auto* menu = add(new CommandMenu{tr("&View"), this});
    menu->add({{Kind::toggleViewMode}});
    menu->addSeparator();
    menu->add({{Kind::toggleInfo}, {Kind::toggleEdit}, {Kind::togglePresets}});
    menu->addSeparator();
    ZoomCommands::addTo(*menu);
    menu->addSeparator();
    menu->add({{Kind::focusSearch}});
    menu->addSeparator();
    menu->add({{Kind::toggleFullScreen}});
}

void MainMenu::openFirst() {
    if (isEnabled() && !m_menus.empty()) setActiveAction(m_menus.front()->menuAction());
}

void MainMenu::refresh() {
    for (auto* menu : m_menus) {
        menu->refresh([this](const WindowCommand& command) {
            return commandState(command, m_library, m_edits, *parentWidget());
        });
        // The desktop's own menu bar asks each menu.
        menu->menuAction()->setEnabled(isEnabled());
    }
    m_shareMenu->menuAction()->setEnabled(m_library.focusedItem() != nullptr);
}

} // namespace kelvara
