#pragma once

#include "views/Theme.h"

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>

#include <optional>

namespace kelvara {

/// What the desktop's settings say about looks, asked of the settings portal. Answers come by signal, soon
/// after it is made and at every change; none comes where there is no portal.
class DesktopAppearance : public QObject {
    Q_OBJECT

public:
    explicit DesktopAppearance(const QDBusConnection& sessionBus, QObject* parent = nullptr);

signals:
    /// Light only where the desktop asks for it: without a preference pictures are judged on dark grey.
    void appearanceChanged(kelvara::Theme::Appearance appearance);
    void reducedMotionChanged(bool reduced);

private slots:
    void settingChanged(const QString& area, const QString& key, const QDBusVariant& value);

private:
    void apply(const QString& area, const QString& key, const QVariant& value);
};

} // namespace kelvara
