#pragma once

#include "platform/Desktop.h"

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <functional>

namespace kelvara {

/// The freedesktop.org services around a window, whichever desktop runs. Main thread.
class LinuxDesktop : public Desktop {
public:
    /// Without a file manager on `sessionBus`, `opener` is started with the folder that holds the file.
    /// `beep` sounds the alert: only the graphical layers above know how.
    LinuxDesktop(const QDBusConnection& sessionBus, std::function<void()> beep,
                 QString opener = QStringLiteral("xdg-open"));

    void beep() override;
    void showInFileManager(const FileURL& url) override;
    [[nodiscard]] FileURL picturesFolder() const override;
    [[nodiscard]] FileURL mediaFolder() const override;

private:
    void openFolder(const FileURL& folder) const;

    QDBusConnection m_sessionBus;
    std::function<void()> m_beep;
    QString m_opener;
    QObject m_calls; // parent of the calls under way, so that none outlives the desktop
};

} // namespace kelvara
