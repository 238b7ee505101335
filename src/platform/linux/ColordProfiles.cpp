#include "platform/linux/ColordProfiles.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QFile>
#include <QVariant>

#include <utility>

namespace kelvara {

namespace {

const auto service = QStringLiteral("org.freedesktop.ColorManager");
const auto managerPath = QStringLiteral("/org/freedesktop/ColorManager");
const auto deviceInterface = QStringLiteral("org.freedesktop.ColorManager.Device");
const auto profileInterface = QStringLiteral("org.freedesktop.ColorManager.Profile");

} // namespace

ColordProfiles::ColordProfiles(const QDBusConnection& systemBus, QObject* parent)
    : QObject{parent}, m_bus{systemBus} {
    if (!m_bus.isConnected()) return;
    for (const auto* signal : {"DeviceAdded", "DeviceChanged", "DeviceRemoved"}) {
        m_bus.connect(service, managerPath, service, QString::fromLatin1(signal), this, SIGNAL(changed()));
    }
}

void ColordProfiles::find(const QString& output, Answer answer) {
    if (!m_bus.isConnected()) return answer({});
    auto question =
        QDBusMessage::createMethodCall(service, managerPath, service, QStringLiteral("FindDeviceByProperty"));
    question << QStringLiteral("XRANDR_name") << output;
    // The device, its profiles with the chosen one first, and that one's file.
    const auto tellFile = [answer](const QVariant& file) {
        answer(FileURL{QFile::encodeName(file.toString()).toStdString()});
    };
    const auto askProfile = [this, answer, tellFile](const QVariant& value) {
        const auto profiles = qdbus_cast<QList<QDBusObjectPath>>(value);
        if (profiles.isEmpty()) return answer({});
        property(profiles.front().path(), profileInterface, QStringLiteral("Filename"), tellFile, answer);
    };
    const auto askDevice = [this, answer, askProfile](const QVariant& device) {
        property(device.value<QDBusObjectPath>().path(), deviceInterface, QStringLiteral("Profiles"),
                 askProfile, answer);
    };
    call(question, askDevice, answer);
}

void ColordProfiles::property(const QString& path, const QString& interface, const QString& name, Step next,
                              const Answer& answer) {
    auto question = QDBusMessage::createMethodCall(
        service, path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question << interface << name;
    const auto unwrapped = [next = std::move(next)](const QVariant& value) {
        next(value.value<QDBusVariant>().variant());
    };
    call(question, unwrapped, answer);
}

void ColordProfiles::call(const QDBusMessage& question, Step next, const Answer& answer) {
    auto* watcher = new QDBusPendingCallWatcher{m_bus.asyncCall(question), this};
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, next = std::move(next), answer] {
        watcher->deleteLater();
        const auto reply = static_cast<QDBusPendingCall*>(watcher)->reply();
        const auto isAnswer = reply.type() == QDBusMessage::ReplyMessage;
        if (!isAnswer || reply.arguments().isEmpty()) return answer({});
        next(reply.arguments().constFirst());
    });
}

} // namespace kelvara
