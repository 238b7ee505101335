#pragma once

#include "model/FileURL.h"

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include <functional>

class QDBusMessage;
class QVariant;

namespace kelvara {

/// The profiles of screens as colord keeps them: what the user chose in the desktop's settings. Main thread;
/// nothing waits for the bus.
class ColordProfiles : public QObject {
    Q_OBJECT

public:
    /// Called once on the main thread with the profile's file; empty when colord isn't there or has none.
    using Answer = std::function<void(FileURL)>;

    explicit ColordProfiles(const QDBusConnection& systemBus, QObject* parent = nullptr);

    /// `output` is the connector as XRandR and the compositors name it: "eDP-1".
    void find(const QString& output, Answer answer);

signals:
    /// Some screen has another profile than before.
    void changed();

private:
    using Step = std::function<void(const QVariant&)>;
    void call(const QDBusMessage& question, Step next, const Answer& answer);
    void property(const QString& path, const QString& interface, const QString& name, Step next,
                  const Answer& answer);

    QDBusConnection m_bus;
};

} // namespace kelvara
