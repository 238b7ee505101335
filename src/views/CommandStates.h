#pragma once

#include "model/FileURL.h"
#include "views/WindowKeys.h"

#include <QString>

#include <vector>

namespace kelvara {

class EditHistory;
class LibraryViewModel;

/// How a command of the menus stands at the moment.
struct CommandState {
    QString title;
    bool isEnabled = true;
    std::optional<bool> isChecked{}; ///< Empty for a command without a check mark.
};

/// The one place for the titles and the enabling rules of the menus. `window` is the main window.
[[nodiscard]] CommandState commandState(const WindowCommand& command, const LibraryViewModel& library,
                                        const EditHistory& edits, const QWidget& window);

/// The photos that pasted edits go to: the action targets of the focused one, without videos.
[[nodiscard]] std::vector<FileURL> editTargets(const LibraryViewModel& library);

} // namespace kelvara
