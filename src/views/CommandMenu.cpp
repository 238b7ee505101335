#include "views/CommandMenu.h"

#include "views/Text.h"

#include <algorithm>

namespace kelvara {

CommandMenu::CommandMenu(const QString& title, QWidget* parent) : QMenu{title, parent} {}

void CommandMenu::add(std::initializer_list<WindowCommand> commands) {
    for (const auto& command : commands) {
        auto* action = addAction({}, this, [this, command] { emit chosen(command); });
        action->setShortcut(menuKey(command.kind));
        // Of no widget that ever has the focus: shown, never pressed.
        action->setShortcutContext(Qt::WidgetShortcut);
        m_commands.emplace_back(action, command);
    }
}

CommandMenu* CommandMenu::addSubmenu(const QString& title) {
    auto* submenu = new CommandMenu{title, this};
    connect(submenu, &CommandMenu::chosen, this, &CommandMenu::chosen);
    addMenu(submenu);
    m_submenus.push_back(submenu);
    return submenu;
}

void CommandMenu::refresh(const States& state) {
    for (const auto& [action, command] : m_commands) {
        const auto now = state(command);
        action->setText(withoutMnemonics(now.title));
        action->setEnabled(now.isEnabled);
        action->setCheckable(now.isChecked.has_value());
        action->setChecked(now.isChecked.value_or(false));
    }
    for (auto* submenu : m_submenus) {
        submenu->refresh(state);
        const auto isEnabled = [](const auto& entry) { return entry.first->isEnabled(); };
        submenu->menuAction()->setEnabled(
            std::any_of(submenu->m_commands.begin(), submenu->m_commands.end(), isEnabled));
    }
}

} // namespace kelvara
