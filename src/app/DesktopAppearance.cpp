#include "app/DesktopAppearance.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace kelvara {

namespace {

const auto service = QStringLiteral("org.freedesktop.portal.Desktop");
const auto path = QStringLiteral("/org/freedesktop/portal/desktop");
const auto settings = QStringLiteral("org.freedesktop.portal.Settings");
const auto appearance = QStringLiteral("org.freedesktop.appearance");
const auto gnomeInterface = QStringLiteral("org.gnome.desktop.interface");
constexpr uint prefersLight = 2;

using Areas = QMap<QString, QVariantMap>;

} // namespace

DesktopAppearance::DesktopAppearance(const QDBusConnection& sessionBus, QObject* parent) : QObject{parent} {
    if (!sessionBus.isConnected()) return;
    qRegisterMetaType<QDBusVariant>(); // the slot's argument is looked up by name
    auto bus = sessionBus;
    bus.connect(service, path, settings, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    auto question = QDBusMessage::createMethodCall(service, path, settings, QStringLiteral("ReadAll"));
    question << QStringList{appearance, gnomeInterface};
    auto* watcher = new QDBusPendingCallWatcher{bus.asyncCall(question), this};
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<> reply = *watcher;
        if (reply.isError() || watcher->reply().arguments().isEmpty()) return;
        const auto areas = qdbus_cast<Areas>(watcher->reply().arguments().constFirst());
        for (auto area = areas.begin(); area != areas.end(); ++area) {
            for (auto key = area->begin(); key != area->end(); ++key)
                apply(area.key(), key.key(), key.value());
        }
    });
}

void DesktopAppearance::settingChanged(const QString& area, const QString& key, const QDBusVariant& value) {
    apply(area, key, value.variant());
}

void DesktopAppearance::apply(const QString& area, const QString& key, const QVariant& value) {
    if (area == appearance && key == QStringLiteral("color-scheme")) {
        emit appearanceChanged(value.toUInt() == prefersLight ? Theme::Appearance::light
                                                              : Theme::Appearance::dark);
    } else if (area == appearance && key == QStringLiteral("reduced-motion")) {
        emit reducedMotionChanged(value.toUInt() == 1);
    } else if (area == gnomeInterface && key == QStringLiteral("enable-animations")) {
        emit reducedMotionChanged(!value.toBool());
    }
}

} // namespace kelvara
