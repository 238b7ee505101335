#pragma once

#include "views/CommandMenu.h"

namespace kelvara {

/// The "Photo" menu: what can be done with the focused photo and with the marked ones.
class PhotoCommands : public CommandMenu {
    Q_OBJECT

public:
    explicit PhotoCommands(QWidget* parent = nullptr);
};

} // namespace kelvara
