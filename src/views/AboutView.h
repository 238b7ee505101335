#pragma once

#include "views/SideWindow.h"

namespace kelvara {

/// The about panel: what this is, its version and licence, and whose work it stands on.
class AboutView : public SideWindow {
    Q_OBJECT

public:
    explicit AboutView(QWidget* mainWindow);

private:
    [[nodiscard]] QWidget* makeHeader();
    [[nodiscard]] QWidget* makeCredits();
};

} // namespace kelvara
