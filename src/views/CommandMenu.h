#pragma once

#include "views/CommandStates.h"

#include <QMenu>

#include <functional>
#include <initializer_list>
#include <utility>
#include <vector>

namespace kelvara {

/// A menu of window commands. It shows their keys and leaves pressing them to the window, which knows who has
/// the keyboard.
class CommandMenu : public QMenu {
    Q_OBJECT

public:
    explicit CommandMenu(const QString& title, QWidget* parent = nullptr);

    void add(std::initializer_list<WindowCommand> commands);
    CommandMenu* addSubmenu(const QString& title);

    /// Renews titles, check marks and what can be chosen, here and in the submenus.
    using States = std::function<CommandState(const WindowCommand&)>;
    void refresh(const States& state);

signals:
    void chosen(const kelvara::WindowCommand& command);

private:
    std::vector<std::pair<QAction*, WindowCommand>> m_commands;
    std::vector<CommandMenu*> m_submenus;
};

} // namespace kelvara
