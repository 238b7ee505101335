#include "views/SideWindows.h"

#include "views/AboutView.h"
#include "views/KeyboardShortcutsView.h"
#include "views/SettingsView.h"
#include "views/SupportView.h"

#include <utility>

namespace kelvara {

SideWindows::SideWindows(Settings& settings, QUrl donationAddress)
    : m_settings{settings}, m_donationAddress{std::move(donationAddress)} {}

void SideWindows::show(Identifier identifier, QWidget& mainWindow) {
    auto& window = m_windows.at(static_cast<std::size_t>(identifier));
    if (!window) {
        window = make(identifier, mainWindow);
        QObject::connect(window, &SideWindow::supportRequested, &mainWindow,
                         [this, &mainWindow] { show(Identifier::support, mainWindow); });
    }
    window->show();
    window->raise();
    window->activateWindow();
}

SideWindow* SideWindows::make(Identifier identifier, QWidget& mainWindow) const {
    switch (identifier) {
    case Identifier::about:
        return new AboutView{&mainWindow};
    case Identifier::settings:
        return new SettingsView{m_settings, &mainWindow};
    case Identifier::shortcuts:
        return new KeyboardShortcutsView{&mainWindow};
    case Identifier::support:
    case Identifier::count:
        break;
    }
    return new SupportView{m_donationAddress, &mainWindow};
}

} // namespace kelvara
