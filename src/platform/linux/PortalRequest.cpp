#include "platform/linux/PortalRequest.h"

#include <utility>

namespace kelvara {

PortalRequest::PortalRequest(QDBusConnection bus, const QString& path, std::string problem,
                             SharePicker::OnEnd onEnd, QObject* parent)
    : QObject{parent}, m_problem{std::move(problem)}, m_onEnd{std::move(onEnd)} {
    // From whoever sends it: to name the service here would wait for the bus to find its owner.
    bus.connect({}, path, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"), this,
                SLOT(responded(uint, QVariantMap)));
}

void PortalRequest::fail() {
    deleteLater();
    if (const auto onEnd = std::exchange(m_onEnd, {})) onEnd(Failure{m_problem});
}

void PortalRequest::responded(uint response, const QVariantMap&) {
    constexpr uint done = 0;
    constexpr uint cancelledByUser = 1;
    if (response > cancelledByUser) return fail();
    deleteLater();
    const auto onEnd = std::exchange(m_onEnd, {});
    if (onEnd && response == done) onEnd({});
}

} // namespace kelvara
