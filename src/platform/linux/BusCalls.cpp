#include "platform/linux/BusCalls.h"

#include <QDBusError>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <utility>

namespace kelvara {

void BusCalls::call(const QDBusMessage& call, OnReply onReply, std::chrono::milliseconds patience) {
    // Of a call on a bus that isn't there no watcher would ever tell.
    const auto pending =
        m_bus.isConnected()
            ? m_bus.asyncCall(call, static_cast<int>(patience.count()))
            : QDBusPendingCall::fromError({QDBusError::Disconnected, QStringLiteral("No message bus")});
    auto* watcher = new QDBusPendingCallWatcher{pending, &m_calls};
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &m_calls,
                     [watcher, onReply = std::move(onReply)] {
                         watcher->deleteLater();
                         onReply(watcher->reply());
                     });
}

} // namespace kelvara
