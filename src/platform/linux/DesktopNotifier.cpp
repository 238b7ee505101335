#include "platform/linux/DesktopNotifier.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QVariantMap>
#include <utility>

namespace kelvara {

namespace {

const auto service = QStringLiteral("org.freedesktop.Notifications");
const auto path = QStringLiteral("/org/freedesktop/Notifications");
const auto defaultAction = QStringLiteral("default"); // a click on the notification itself
constexpr int serversTimeLimit = -1;

QDBusMessage method(const QString& name) {
    return QDBusMessage::createMethodCall(service, path, service, name);
}

} // namespace

DesktopNotifier::DesktopNotifier(const QDBusConnection& sessionBus, const QString& desktopFile,
                                 std::function<void()> onActivated)
    : m_sessionBus{sessionBus}, m_desktopFile{desktopFile}, m_onActivated{std::move(onActivated)} {
    // From whoever sends them: to name the service here would wait for the bus to find its owner.
    const QString anybody;
    m_sessionBus.connect(anybody, path, service, QStringLiteral("ActionInvoked"), this,
                         SLOT(actionInvoked(uint, QString)));
    m_sessionBus.connect(anybody, path, service, QStringLiteral("ActivationToken"), this,
                         SLOT(activationToken(uint, QString)));
}

void DesktopNotifier::notify(const Notification& notification) {
    const auto call = m_sessionBus.asyncCall(method(QStringLiteral("GetCapabilities")));
    auto* watcher = new QDBusPendingCallWatcher{call, this};
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, notification] {
        watcher->deleteLater();
        const QDBusPendingReply<QStringList> capabilities = *watcher;
        if (!capabilities.isError()) send(notification, capabilities.value());
    });
}

void DesktopNotifier::send(const Notification& notification, const QStringList& capabilities) {
    auto title = QString::fromStdString(notification.title);
    auto message = QString::fromStdString(notification.message);
    if (!capabilities.contains(QStringLiteral("body"))) {
        title += QStringLiteral(": ") + std::exchange(message, {});
    } else if (capabilities.contains(QStringLiteral("body-markup"))) {
        message = message.toHtmlEscaped();
    }
    QStringList actions;
    if (capabilities.contains(QStringLiteral("actions")))
        actions << defaultAction << QCoreApplication::applicationName();
    auto call = method(QStringLiteral("Notify"));
    call << QCoreApplication::applicationName() << m_shown << m_desktopFile << title << message << actions
         << QVariantMap{{QStringLiteral("desktop-entry"), m_desktopFile},
                        {QStringLiteral("category"), QStringLiteral("transfer")}}
         << serversTimeLimit;
    auto* watcher = new QDBusPendingCallWatcher{m_sessionBus.asyncCall(call), this};
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<uint> id = *watcher;
        if (!id.isError()) m_shown = id.value();
    });
}

void DesktopNotifier::actionInvoked(uint id, const QString& action) {
    if (id == m_shown && action == defaultAction) m_onActivated();
}

void DesktopNotifier::activationToken(uint id, const QString& token) {
    // Qt hands it to a Wayland compositor, which lets no other program raise its windows.
    if (id == m_shown) qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
}

} // namespace kelvara
