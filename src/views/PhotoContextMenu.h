#pragma once

#include "views/CommandMenu.h"

namespace kelvara {

class EditHistory;
class LibraryViewModel;
class ShareMenuItems;

/// What can be done with the focused photo, and where it is one of several marked ones with all of them, as
/// things stand when it is made.
class PhotoContextMenu : public CommandMenu {
    Q_OBJECT

public:
    /// The references outlive it.
    PhotoContextMenu(const LibraryViewModel& library, const EditHistory& edits, const ShareMenuItems& sharing,
                     QWidget* window);
};

} // namespace kelvara
