#include "platform/linux/LogindInhibitor.h"

#include <QDBusMessage>

namespace kelvara {

void LogindInhibitor::hold(const std::string& reason) {
    if (m_lock) return;
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    call << QStringLiteral("sleep") << QStringLiteral("Kelvara") << QString::fromStdString(reason)
         << QStringLiteral("block");
    m_lock = m_systemBus.asyncCall(call);
}

} // namespace kelvara
