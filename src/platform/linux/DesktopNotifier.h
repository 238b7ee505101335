#pragma once

#include "platform/Notifier.h"

#include <QDBusConnection>
#include <QObject>
#include <QStringList>
#include <functional>

namespace kelvara {

/// Speaks to the desktop's org.freedesktop.Notifications service.
class DesktopNotifier : public QObject, public Notifier {
    Q_OBJECT

public:
    /// `onActivated` is called when the user chooses a notification. `desktopFile` is the name of the
    /// application's desktop file, "kelvara".
    DesktopNotifier(const QDBusConnection& sessionBus, const QString& desktopFile,
                    std::function<void()> onActivated);

    void notify(const Notification& notification) override;

private slots:
    void actionInvoked(uint id, const QString& action);
    void activationToken(uint id, const QString& token);

private:
    void send(const Notification& notification, const QStringList& capabilities);

    QDBusConnection m_sessionBus;
    QString m_desktopFile;
    std::function<void()> m_onActivated;
    uint m_shown = 0; // the server's number of the last one; 0 for none
};

} // namespace kelvara
