#pragma once

#include "library/Settings.h"
#include "platform/AnalyticsClient.h"

namespace kelvara {

/// Usage statistics as the user allows them: lets nothing through while they are off, and has dropped what
/// still waits when they are turned off.
class AllowedAnalytics final : public AnalyticsClient {
public:
    /// Both outlive it.
    AllowedAnalytics(Settings& settings, AnalyticsClient& client) : m_settings{settings}, m_client{client} {
        m_subscription = settings.observe({Setting::shareAnonymousUsage}, [this](const auto&) {
            if (!m_settings.sharesAnonymousUsage()) m_client.forget();
        });
    }

    void record(const UsageEvent& event) override {
        if (m_settings.sharesAnonymousUsage()) m_client.record(event);
    }
    void forget() override { m_client.forget(); }

private:
    Settings& m_settings;
    AnalyticsClient& m_client;
    Subscription m_subscription;
};

} // namespace kelvara
