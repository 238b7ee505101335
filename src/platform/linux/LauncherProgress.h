#pragma once

#include "platform/ProgressIndicator.h"

#include <QDBusConnection>
#include <QString>

namespace kelvara {

/// The bar on the application's icon in docks that listen to com.canonical.Unity.LauncherEntry.
class LauncherProgress : public ProgressIndicator {
public:
    /// `desktopFile` is the name of the application's desktop file, "kelvara".
    LauncherProgress(const QDBusConnection& sessionBus, const QString& desktopFile);

    void show(double share) override;
    void hide() override;

private:
    void send(double share, bool isVisible);

    QDBusConnection m_sessionBus;
    QString m_application;
    int m_shownPercent = -1; // below zero while hidden
};

} // namespace kelvara
