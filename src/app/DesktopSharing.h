#pragma once

#include "async/Executor.h"
#include "platform/linux/BluetoothDevices.h"
#include "platform/linux/NearbyDevices.h"
#include "platform/linux/PortalTargets.h"
#include "views/SharePickerMenu.h"

#include <QDBusConnection>

namespace kelvara {

/// Everything that this desktop can hand files to, and the menu that offers it. Main thread.
class DesktopSharing {
public:
    /// All outlive it. Files are opened on `background`.
    DesktopSharing(Desktop& desktop, Executor& background, Executor& main)
        : m_portal{QDBusConnection::sessionBus(), background, main}, m_picker{{.desktop = desktop,
                                                                               .email = m_email,
                                                                               .otherProgram = m_otherProgram,
                                                                               .nearby = m_nearby,
                                                                               .bluetooth = m_bluetooth}} {}

    [[nodiscard]] SharePickerMenu& picker() { return m_picker; }

private:
    DesktopPortal m_portal;
    EmailTarget m_email{m_portal};
    OtherProgramTarget m_otherProgram{m_portal};
    NearbyDevices m_nearby{QDBusConnection::sessionBus()};
    BluetoothDevices m_bluetooth{QDBusConnection::systemBus(), QDBusConnection::sessionBus()};
    SharePickerMenu m_picker;
};

} // namespace kelvara
