#include "platform/linux/NearbyDevices.h"

#include "platform/linux/ShareProblem.h"

#include <QDBusArgument>
#include <QMap>
#include <QStringList>
#include <utility>

namespace kelvara {

namespace {

const auto service = QStringLiteral("org.kde.kdeconnect");
const auto daemonPath = QStringLiteral("/modules/kdeconnect");

std::vector<ShareTarget> devices(const QDBusMessage& reply) {
    std::vector<ShareTarget> found;
    if (reply.signature() != u"a{ss}") return found; // an error's is its message's
    const auto names = qdbus_cast<QMap<QString, QString>>(reply.arguments().constFirst());
    for (auto device = names.begin(); device != names.end(); ++device) {
        found.push_back({device.key().toStdString(), device.value().toStdString()});
    }
    return found;
}

} // namespace

void NearbyDevices::find(std::function<void(std::vector<ShareTarget>)> onFound) {
    auto call = QDBusMessage::createMethodCall(
        service, daemonPath, QStringLiteral("org.kde.kdeconnect.daemon"), QStringLiteral("deviceNames"));
    constexpr bool onlyReachable = true;
    constexpr bool onlyPaired = true;
    call << onlyReachable << onlyPaired;
    call.setAutoStartService(false);
    m_calls.call(
        call, [onFound = std::move(onFound)](const QDBusMessage& reply) { onFound(devices(reply)); },
        findingPatience);
}

void NearbyDevices::send(const ShareTarget& to, std::vector<FileURL> files, SharePicker::OnEnd onEnd) {
    auto call = QDBusMessage::createMethodCall(
        service, daemonPath + QStringLiteral("/devices/%1/share").arg(QString::fromStdString(to.id)),
        QStringLiteral("org.kde.kdeconnect.device.share"), QStringLiteral("shareUrls"));
    QStringList uris;
    for (const auto& file : files) uris << QString::fromStdString(file.uri());
    m_calls.call(call << uris, [name = to.name, onEnd = std::move(onEnd)](const QDBusMessage& reply) {
        if (reply.type() == QDBusMessage::ErrorMessage) return onEnd(Failure{notSentTo(name)});
        onEnd({});
    });
}

} // namespace kelvara
