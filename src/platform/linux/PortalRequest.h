#pragma once

#include "platform/SharePicker.h"

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>
#include <string>

namespace kelvara {

/// Waits for the end of one dialog of the desktop portal, then is gone.
class PortalRequest : public QObject {
    Q_OBJECT

public:
    /// `path` is the request's object; to be heard for sure, it is listened to before the call.
    PortalRequest(QDBusConnection bus, const QString& path, std::string problem, SharePicker::OnEnd onEnd,
                  QObject* parent);

    void fail();

private slots:
    void responded(uint response, const QVariantMap& results);

private:
    std::string m_problem;
    SharePicker::OnEnd m_onEnd;
};

} // namespace kelvara
