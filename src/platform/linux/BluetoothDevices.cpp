#include "platform/linux/BluetoothDevices.h"

#include "platform/linux/ObexTransfer.h"
#include "platform/linux/ShareProblem.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QMap>
#include <QStringList>
#include <utility>

namespace kelvara {

namespace {

using Interfaces = QMap<QString, QVariantMap>;
using Objects = QMap<QDBusObjectPath, Interfaces>;

const auto objectPushProfile = QStringLiteral("00001105-0000-1000-8000-00805f9b34fb");

bool takesFiles(const QVariantMap& device, const Objects& objects) {
    const auto adapter = objects.value(device.value(QStringLiteral("Adapter")).value<QDBusObjectPath>())
                             .value(QStringLiteral("org.bluez.Adapter1"));
    return adapter.value(QStringLiteral("Powered")).toBool() &&
           device.value(QStringLiteral("Paired")).toBool() &&
           device.value(QStringLiteral("UUIDs")).toStringList().contains(objectPushProfile);
}

/// Their IDs are their addresses.
std::vector<ShareTarget> receivers(const QDBusMessage& reply) {
    std::vector<ShareTarget> found;
    if (reply.signature() != u"a{oa{sa{sv}}}") return found; // an error's is its message's
    const auto objects = qdbus_cast<Objects>(reply.arguments().constFirst());
    for (const auto& interfaces : objects) {
        const auto device = interfaces.value(QStringLiteral("org.bluez.Device1"));
        if (!takesFiles(device, objects)) continue;
        found.push_back({device.value(QStringLiteral("Address")).toString().toStdString(),
                         device.value(QStringLiteral("Alias")).toString().toStdString()});
    }
    return found;
}

} // namespace

void BluetoothDevices::find(std::function<void(std::vector<ShareTarget>)> onFound) {
    auto list = QDBusMessage::createMethodCall(QStringLiteral("org.bluez"), QStringLiteral("/"),
                                               QStringLiteral("org.freedesktop.DBus.ObjectManager"),
                                               QStringLiteral("GetManagedObjects"));
    list.setAutoStartService(false);
    const auto ask = [this, onFound = std::move(onFound)](const QDBusMessage& reply) {
        const auto found = receivers(reply);
        if (found.empty()) return onFound({});
        // Devices are of no use where the service that sends files is not installed.
        const auto ping = QDBusMessage::createMethodCall(
            ObexTransfer::service(), QStringLiteral("/org/bluez/obex"),
            QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping"));
        m_obex.call(
            ping,
            [found, onFound](const QDBusMessage& answer) {
                onFound(answer.type() == QDBusMessage::ReplyMessage ? found : std::vector<ShareTarget>{});
            },
            findingPatience);
    };
    m_bluetooth.call(list, ask, findingPatience);
}

void BluetoothDevices::send(const ShareTarget& to, std::vector<FileURL> files, SharePicker::OnEnd onEnd) {
    auto* transfer = new ObexTransfer{m_obex.bus(), std::move(files), &m_transfers};
    const auto conclude = [transfer, name = to.name, onEnd = std::move(onEnd)](bool wasSent) {
        transfer->deleteLater();
        if (!wasSent) return onEnd(Failure{notSentTo(name)});
        onEnd({});
    };
    QObject::connect(transfer, &ObexTransfer::ended, &m_transfers, conclude, Qt::SingleShotConnection);
    transfer->start(QString::fromStdString(to.id));
}

} // namespace kelvara
