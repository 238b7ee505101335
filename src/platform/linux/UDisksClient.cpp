#include "platform/linux/UDisksClient.h"

#include <QByteArrayList>
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <limits>
#include <utility>

namespace kelvara {

namespace {

const auto service = QStringLiteral("org.freedesktop.UDisks2");
const auto managerPath = QStringLiteral("/org/freedesktop/UDisks2");
const auto managerInterface = QStringLiteral("org.freedesktop.DBus.ObjectManager");
const auto driveInterface = QStringLiteral("org.freedesktop.UDisks2.Drive");
const auto blockInterface = QStringLiteral("org.freedesktop.UDisks2.Block");
const auto filesystemInterface = QStringLiteral("org.freedesktop.UDisks2.Filesystem");

constexpr int noTimeLimit = std::numeric_limits<int>::max();

bool flag(const QVariantMap& properties, const char* name) {
    return properties.value(QLatin1String{name}).toBool();
}

std::string text(const QVariantMap& properties, const char* name) {
    return properties.value(QLatin1String{name}).toString().toStdString();
}

std::string objectPath(const QVariantMap& properties, const char* name) {
    return properties.value(QLatin1String{name}).value<QDBusObjectPath>().path().toStdString();
}

/// Paths come as bytes with a zero at their end.
std::vector<std::string> paths(const QVariant& value) {
    std::vector<std::string> result;
    for (const auto& bytes : qdbus_cast<QByteArrayList>(value)) {
        const std::string path{bytes.constData()};
        if (!path.empty()) result.push_back(path);
    }
    return result;
}

DiskDrive decodedDrive(const QString& path, const QVariantMap& properties) {
    DiskDrive drive;
    drive.path = path.toStdString();
    drive.isRemovable = flag(properties, "Removable");
    drive.isMediaRemovable = flag(properties, "MediaRemovable");
    drive.isEjectable = flag(properties, "Ejectable");
    drive.canPowerOff = flag(properties, "CanPowerOff");
    drive.siblingID = text(properties, "SiblingId");
    return drive;
}

DiskBlock decodedBlock(const QString& path, const QVariantMap& properties, const QVariantMap& filesystem) {
    DiskBlock block;
    block.path = path.toStdString();
    block.drive = objectPath(properties, "Drive");
    block.backingDevice = objectPath(properties, "CryptoBackingDevice");
    block.name = text(properties, "HintName");
    if (block.name.empty()) block.name = text(properties, "IdLabel");
    block.isIgnored = flag(properties, "HintIgnore");
    block.mountPoints = paths(filesystem.value(QStringLiteral("MountPoints")));
    return block;
}

} // namespace

UDisksClient::UDisksClient(const QDBusConnection& bus)
    : m_bus{bus}, m_watcher{service, bus, QDBusServiceWatcher::WatchForOwnerChange} {
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) {
                owner.isEmpty() ? forget() : load();
            });
    subscribe();
    if (m_bus.isConnected()) {
        load();
    } else {
        QMetaObject::invokeMethod(this, &UDisksClient::forget, Qt::QueuedConnection);
    }
}

/// Without a sender, which Qt would ask the bus for and wait; `isFromUDisks` looks at it instead.
void UDisksClient::subscribe() {
    const QString anybody;
    m_bus.connect(anybody, QStringLiteral("/org/freedesktop/DBus/Local"),
                  QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                  SLOT(forget()));
    m_bus.connect(anybody, managerPath, managerInterface, QStringLiteral("InterfacesAdded"), this,
                  SLOT(interfacesAdded(QDBusMessage)));
    m_bus.connect(anybody, managerPath, managerInterface, QStringLiteral("InterfacesRemoved"), this,
                  SLOT(interfacesRemoved(QDBusMessage)));
    for (const auto& interface : {driveInterface, blockInterface, filesystemInterface}) {
        m_bus.connect(anybody, {}, QStringLiteral("org.freedesktop.DBus.Properties"),
                      QStringLiteral("PropertiesChanged"), {interface}, {}, this,
                      SLOT(propertiesChanged(QDBusMessage)));
    }
}

bool UDisksClient::isFromUDisks(const QDBusMessage& signal) const {
    return m_isPresent && signal.service() == m_sender;
}

void UDisksClient::load() {
    const auto number = ++m_loads;
    const auto call = QDBusMessage::createMethodCall(service, managerPath, managerInterface,
                                                     QStringLiteral("GetManagedObjects"));
    auto* reply = new QDBusPendingCallWatcher{m_bus.asyncCall(call, noTimeLimit), this};
    connect(reply, &QDBusPendingCallWatcher::finished, this, [this, reply, number] {
        reply->deleteLater();
        if (number != m_loads) return;
        const auto answer = reply->reply();
        if (reply->isError() || answer.arguments().isEmpty()) {
            forget();
            return;
        }
        // The signals before this answer are part of it, and those that follow build on it.
        m_objects.clear();
        const auto objects = qdbus_cast<QMap<QDBusObjectPath, Interfaces>>(answer.arguments().constFirst());
        for (auto object = objects.begin(); object != objects.end(); ++object) {
            m_objects.insert(object.key().path(), object.value());
        }
        m_sender = answer.service();
        m_isPresent = true;
        emit changed();
    });
}

void UDisksClient::forget() {
    ++m_loads;
    m_objects.clear();
    m_isPresent = false;
    emit vanished();
}

void UDisksClient::interfacesAdded(const QDBusMessage& signal) {
    const auto arguments = signal.arguments();
    if (!isFromUDisks(signal) || arguments.size() != 2) return;
    auto& object = m_objects[arguments[0].value<QDBusObjectPath>().path()];
    object.insert(qdbus_cast<Interfaces>(arguments[1]));
    emit changed();
}

void UDisksClient::interfacesRemoved(const QDBusMessage& signal) {
    const auto arguments = signal.arguments();
    if (!isFromUDisks(signal) || arguments.size() != 2) return;
    const auto object = m_objects.find(arguments[0].value<QDBusObjectPath>().path());
    if (object == m_objects.end()) return;
    for (const auto& interface : arguments[1].toStringList()) object->remove(interface);
    if (object->isEmpty()) m_objects.erase(object);
    emit changed();
}

void UDisksClient::propertiesChanged(const QDBusMessage& signal) {
    const auto arguments = signal.arguments();
    if (!isFromUDisks(signal) || arguments.size() != 3) return;
    const auto object = m_objects.find(signal.path());
    if (object == m_objects.end()) return;
    auto& properties = (*object)[arguments[0].toString()];
    properties.insert(qdbus_cast<QVariantMap>(arguments[1]));
    // UDisks sends values along; should one be missing, everything is asked anew.
    if (!arguments[2].toStringList().isEmpty()) load();
    emit changed();
}

DiskObjects UDisksClient::objects() const {
    DiskObjects decoded;
    for (auto object = m_objects.begin(); object != m_objects.end(); ++object) {
        const auto& interfaces = object.value();
        if (interfaces.contains(driveInterface)) {
            decoded.drives.push_back(decodedDrive(object.key(), interfaces[driveInterface]));
        }
        if (interfaces.contains(blockInterface)) {
            decoded.blocks.push_back(
                decodedBlock(object.key(), interfaces[blockInterface], interfaces[filesystemInterface]));
        }
    }
    return decoded;
}

void UDisksClient::call(const QString& object, const QString& interface, const QString& method,
                        std::function<void(const std::optional<QDBusError>&)> onEnd) {
    auto call = QDBusMessage::createMethodCall(service, object, interface, method);
    call << QVariantMap{};
    call.setInteractiveAuthorizationAllowed(true);
    auto* reply = new QDBusPendingCallWatcher{m_bus.asyncCall(call, noTimeLimit), this};
    connect(reply, &QDBusPendingCallWatcher::finished, this, [reply, onEnd = std::move(onEnd)] {
        reply->deleteLater();
        onEnd(reply->isError() ? std::optional{reply->error()} : std::nullopt);
    });
}

} // namespace kelvara
