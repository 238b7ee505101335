#pragma once

#include "platform/ShareTargets.h"
#include "platform/linux/BusCalls.h"

namespace kelvara {

/// Devices that are paired over Bluetooth and take files (the profile "Object Push"), while Bluetooth is on.
/// Whether they are near turns out when something is sent.
class BluetoothDevices : public ShareTargets {
public:
    /// The devices are known on the system bus, files are sent through the session's OBEX service.
    BluetoothDevices(const QDBusConnection& systemBus, const QDBusConnection& sessionBus)
        : m_bluetooth{systemBus}, m_obex{sessionBus} {}

    void find(std::function<void(std::vector<ShareTarget>)> onFound) override;
    void send(const ShareTarget& to, std::vector<FileURL> files, SharePicker::OnEnd onEnd) override;

private:
    BusCalls m_bluetooth;
    BusCalls m_obex;
    QObject m_transfers; // parent of those under way
};

} // namespace kelvara
