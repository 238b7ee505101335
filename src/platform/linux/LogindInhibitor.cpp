#include "platform/linux/LogindInhibitor.h"

#include <QDBusMessage>
#include <QDBusPendingReply>

namespace kelvara {

void LogindInhibitor::hold(const std::string& reason) {
    if (m_call) return;
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    call << QStringLiteral("sleep") << QStringLiteral("Kelvara") << QString::fromStdString(reason)
         << QStringLiteral("block");
    m_call = std::make_unique<QDBusPendingCallWatcher>(m_systemBus.asyncCall(call));
    QObject::connect(m_call.get(), &QDBusPendingCallWatcher::finished, m_call.get(), [this] {
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply = *m_call;
        // Without logind, or where it refuses, the machine may sleep.
        if (!reply.isError()) m_lock = reply.value();
    });
}

void LogindInhibitor::release() {
    m_call.reset(); // and with it the descriptor in its reply
    m_lock = {};
}

} // namespace kelvara
