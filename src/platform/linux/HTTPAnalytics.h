#pragma once

#include "platform/AnalyticsClient.h"

#include <QString>
#include <QThread>
#include <QUrl>

#include <memory>

namespace kelvara {

/// Posts each usage event as a small JSON document, one after the other, on a thread of its own. An event
/// that doesn't arrive is not sent again: the counts are estimates, and nothing about the user is kept on
/// disk.
///
///     {"event": "photos_copied", "properties": {"app_version": "1.0", "count": 12, "os_version": "…", …}}
class HTTPAnalytics final : public AnalyticsClient {
public:
    /// Events under way at most; further ones are dropped.
    static constexpr int maximumUnderWay = 64;

    struct Versions {
        QString application;
        QString system;
    };
    /// Without an address, or with one that isn't of the web, nothing is kept or sent.
    HTTPAnalytics(const QUrl& address, Versions versions);
    /// Drops what is under way.
    ~HTTPAnalytics() override;
    HTTPAnalytics(const HTTPAnalytics&) = delete;
    HTTPAnalytics& operator=(const HTTPAnalytics&) = delete;

    void record(const UsageEvent& event) override;
    void forget() override;

private:
    class Sender;

    Versions m_versions;
    std::unique_ptr<Sender> m_sender; // lives on m_thread; null without an address
    QThread m_thread;
};

} // namespace kelvara
