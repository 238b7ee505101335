#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <chrono>
#include <functional>

namespace kelvara {

/// Calls to the services of a message bus, whose replies come later; none does once this is gone. Main
/// thread.
class BusCalls {
public:
    /// `reply` is an error where the service is missing, refuses, or keeps silent.
    using OnReply = std::function<void(const QDBusMessage& reply)>;

    explicit BusCalls(const QDBusConnection& bus) : m_bus{bus} {}

    [[nodiscard]] QDBusConnection& bus() { return m_bus; }
    void call(const QDBusMessage& call, OnReply onReply,
              std::chrono::milliseconds patience = std::chrono::seconds{25});

private:
    QDBusConnection m_bus;
    QObject m_calls; // parent of those under way
};

} // namespace kelvara
