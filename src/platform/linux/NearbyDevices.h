#pragma once

#include "platform/ShareTargets.h"
#include "platform/linux/BusCalls.h"

namespace kelvara {

/// Phones and computers in the same network that are paired with this one through KDE Connect. Its daemon is
/// asked only where it runs: one that has just been started knows nobody yet.
class NearbyDevices : public ShareTargets {
public:
    explicit NearbyDevices(const QDBusConnection& sessionBus) : m_calls{sessionBus} {}

    void find(std::function<void(std::vector<ShareTarget>)> onFound) override;
    void send(const ShareTarget& to, std::vector<FileURL> files, SharePicker::OnEnd onEnd) override;

private:
    BusCalls m_calls;
};

} // namespace kelvara
