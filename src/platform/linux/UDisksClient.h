#pragma once

#include "platform/linux/DiskObjects.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QMap>
#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <functional>
#include <optional>

namespace kelvara {

/// UDisks2 on a message bus: a picture of its objects that its signals keep true, and calls to them. Main
/// thread; every call is asynchronous, not even the bus is waited for.
class UDisksClient : public QObject {
    Q_OBJECT

public:
    /// Starts UDisks where it does not run and the bus knows how.
    explicit UDisksClient(const QDBusConnection& bus);

    /// Whether `objects()` is true at the moment.
    [[nodiscard]] bool isPresent() const { return m_isPresent; }
    [[nodiscard]] DiskObjects objects() const;

    /// Calls a method of UDisks that takes only options. `onEnd` gets the error, if any; it is dropped with
    /// the client. There is no time limit: writing out a slow card's data can take minutes.
    void call(const QString& object, const QString& interface, const QString& method,
              std::function<void(const std::optional<QDBusError>&)> onEnd);

signals:
    /// The objects have changed, or UDisks came.
    void changed();
    /// UDisks went, or could not be started.
    void vanished();

private slots:
    void forget();
    void interfacesAdded(const QDBusMessage& signal);
    void interfacesRemoved(const QDBusMessage& signal);
    void propertiesChanged(const QDBusMessage& signal);

private:
    using Interfaces = QMap<QString, QVariantMap>;

    void subscribe();
    void load();
    [[nodiscard]] bool isFromUDisks(const QDBusMessage& signal) const;

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    bool m_isPresent = false;
    int m_loads = 0;                     // answers to any but the latest are out of date
    QString m_sender;                    // UDisks' unique name on the bus
    QMap<QString, Interfaces> m_objects; // by path
};

} // namespace kelvara
