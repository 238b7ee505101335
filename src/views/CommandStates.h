#pragma once

#include "views/WindowKeys.h"

#include <QString>

namespace kelvara {

class LibraryViewModel;

/// How a command of the menus stands at the moment.
struct CommandState {
    QString title;
    bool isEnabled = true;
    std::optional<bool> isChecked{}; ///< Empty for a command without a check mark.
};

/// The one place for the titles and the enabling rules of the menus. `window` is the main window.
[[nodiscard]] CommandState commandState(const WindowCommand& command, const LibraryViewModel& library,
                                        const QWidget& window);

} // namespace kelvara
