#pragma once

#include "platform/SleepInhibitor.h"

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <optional>

namespace kelvara {

/// Asks logind not to suspend. Shutting down stays possible: that is somebody's wish, and a copy ends
/// cleanly.
class LogindInhibitor : public SleepInhibitor {
public:
    explicit LogindInhibitor(const QDBusConnection& systemBus) : m_systemBus{systemBus} {}

    void hold(const std::string& reason) override;
    void release() override { m_lock.reset(); }

private:
    QDBusConnection m_systemBus;
    /// The call to logind, whose reply is a descriptor: the lock is held until that is closed. Without
    /// logind, or where it refuses, nothing is held.
    std::optional<QDBusPendingCall> m_lock;
};

} // namespace kelvara
