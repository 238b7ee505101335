#include "platform/linux/ObexTransfer.h"

#include <QDBusArgument>
#include <QVariantMap>

namespace kelvara {

namespace {

constexpr std::chrono::minutes connectingPatience{1}; // somebody may have to allow it on the device

const auto clientPath = QStringLiteral("/org/bluez/obex");
const auto clientInterface = QStringLiteral("org.bluez.obex.Client1");

} // namespace

ObexTransfer::ObexTransfer(const QDBusConnection& sessionBus, std::vector<FileURL> files, QObject* parent)
    : QObject{parent}, m_calls{sessionBus},
      m_watcher{service(), sessionBus, QDBusServiceWatcher::WatchForUnregistration}, m_files{files.begin(),
                                                                                             files.end()} {
    connect(&m_watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] { end(false); });
    // From the beginning and of all transfers: a small file is sent before its transfer's path is known here.
    m_calls.bus().connect({}, {}, QStringLiteral("org.freedesktop.DBus.Properties"),
                          QStringLiteral("PropertiesChanged"), {QStringLiteral("org.bluez.obex.Transfer1")},
                          QStringLiteral("sa{sv}as"), this, SLOT(propertiesChanged(QDBusMessage)));
}

void ObexTransfer::start(const QString& address) {
    auto call = QDBusMessage::createMethodCall(service(), clientPath, clientInterface,
                                               QStringLiteral("CreateSession"));
    call << address << QVariantMap{{QStringLiteral("Target"), QStringLiteral("opp")}};
    m_calls.call(
        call,
        [this](const QDBusMessage& reply) {
            if (reply.signature() != u"o") return end(false);
            m_session = reply.arguments().constFirst().value<QDBusObjectPath>();
            sendNext();
        },
        connectingPatience);
}

void ObexTransfer::sendNext() {
    if (m_files.empty()) return end(true);
    auto call = QDBusMessage::createMethodCall(service(), m_session.path(),
                                               QStringLiteral("org.bluez.obex.ObjectPush1"),
                                               QStringLiteral("SendFile"));
    call << QString::fromStdString(m_files.front().path());
    m_files.pop_front();
    m_calls.call(call, [this](const QDBusMessage& reply) {
        if (reply.type() == QDBusMessage::ErrorMessage) end(false);
    });
}

void ObexTransfer::propertiesChanged(const QDBusMessage& signal) {
    if (m_session.path().isEmpty() || !signal.path().startsWith(m_session.path() + u'/')) return;
    const auto changed = qdbus_cast<QVariantMap>(signal.arguments().value(1));
    const auto status = changed.value(QStringLiteral("Status")).toString();
    if (status == u"complete") sendNext();
    if (status == u"error") end(false);
}

void ObexTransfer::end(bool wasSent) {
    if (!m_session.path().isEmpty()) {
        auto call = QDBusMessage::createMethodCall(service(), clientPath, clientInterface,
                                                   QStringLiteral("RemoveSession"));
        m_calls.bus().send(call << QVariant::fromValue(m_session));
        m_session = {};
    }
    emit ended(wasSent);
}

} // namespace kelvara
