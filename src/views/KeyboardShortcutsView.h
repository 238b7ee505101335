#pragma once

#include "views/SideWindow.h"

#include <QString>

#include <utility>
#include <vector>

namespace kelvara {

/// Keys that belong together, each with what it does.
struct ShortcutGroup {
    QString title;
    std::vector<std::pair<QString, QString>> rows;
};

/// The window that lists every key of the main window.
class KeyboardShortcutsView : public SideWindow {
    Q_OBJECT

public:
    explicit KeyboardShortcutsView(QWidget* mainWindow);

    [[nodiscard]] static std::vector<ShortcutGroup> groups();
};

} // namespace kelvara
