#include "platform/linux/LauncherProgress.h"

#include <QDBusMessage>
#include <QVariantMap>
#include <algorithm>
#include <cmath>

namespace kelvara {

LauncherProgress::LauncherProgress(const QDBusConnection& sessionBus, const QString& desktopFile)
    : m_sessionBus{sessionBus}, m_application{QStringLiteral("application://%1.desktop").arg(desktopFile)} {}

void LauncherProgress::show(double share) {
    const auto bounded = std::clamp(share, 0.0, 1.0);
    // What a dock could not show anyway does not go over the bus.
    const auto percent = static_cast<int>(std::floor(bounded * 100));
    if (percent == m_shownPercent) return;
    m_shownPercent = percent;
    send(bounded, true);
}

void LauncherProgress::hide() {
    if (m_shownPercent < 0) return;
    m_shownPercent = -1;
    send(0, false);
}

void LauncherProgress::send(double share, bool isVisible) {
    auto update = QDBusMessage::createSignal(QStringLiteral("/com/canonical/unity/launcherentry/kelvara"),
                                             QStringLiteral("com.canonical.Unity.LauncherEntry"),
                                             QStringLiteral("Update"));
    update << m_application
           << QVariantMap{{QStringLiteral("progress"), share},
                          {QStringLiteral("progress-visible"), isVisible},
                          {QStringLiteral("count-visible"), false}};
    m_sessionBus.send(update);
}

} // namespace kelvara
