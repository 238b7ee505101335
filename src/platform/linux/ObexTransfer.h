#pragma once

#include "model/FileURL.h"
#include "platform/linux/BusCalls.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <deque>
#include <vector>

namespace kelvara {

/// Files on their way to one Bluetooth device, one after the other. The first one that can't be sent ends
/// it. Main thread.
class ObexTransfer : public QObject {
    Q_OBJECT

public:
    [[nodiscard]] static QString service() { return QStringLiteral("org.bluez.obex"); }

    ObexTransfer(const QDBusConnection& sessionBus, std::vector<FileURL> files, QObject* parent);

    /// `address` is the device's.
    void start(const QString& address);

signals:
    /// May come again; only the first counts.
    void ended(bool wasSent);

private slots:
    void propertiesChanged(const QDBusMessage& signal);

private:
    void sendNext();
    void end(bool wasSent);

    BusCalls m_calls;
    QDBusServiceWatcher m_watcher;
    std::deque<FileURL> m_files; // still to be sent
    QDBusObjectPath m_session;
};

} // namespace kelvara
