#include "platform/linux/BusCalls.h"

#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <utility>

namespace kelvara {

void BusCalls::call(const QDBusMessage& call, OnReply onReply, std::chrono::milliseconds patience) {
    const auto pending = m_bus.asyncCall(call, static_cast<int>(patience.count()));
    auto* watcher = new QDBusPendingCallWatcher{pending, &m_calls};
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &m_calls,
                     [watcher, onReply = std::move(onReply)] {
                         watcher->deleteLater();
                         onReply(watcher->reply());
                     });
}

} // namespace kelvara
