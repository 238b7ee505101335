#pragma once

#include "platform/SleepInhibitor.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <memory>

namespace kelvara {

/// Asks logind not to suspend. Shutting down stays possible: that is somebody's wish, and a copy ends
/// cleanly.
class LogindInhibitor : public SleepInhibitor {
public:
    explicit LogindInhibitor(const QDBusConnection& systemBus) : m_systemBus{systemBus} {}

    void hold(const std::string& reason) override;
    void release() override;

private:
    QDBusConnection m_systemBus;
    std::unique_ptr<QDBusPendingCallWatcher> m_call; // set while held
    QDBusUnixFileDescriptor m_lock;                  // held for as long as it is open
};

} // namespace kelvara
