#pragma once

#include "platform/AnalyticsClient.h"

#include <vector>

namespace kelvara {

/// Keeps what it is told.
class FakeAnalytics : public AnalyticsClient {
public:
    void record(const UsageEvent& event) override { events.push_back(event); }
    void forget() override { events.clear(); }

    std::vector<UsageEvent> events;
};

} // namespace kelvara
