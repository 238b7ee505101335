#include "platform/linux/HTTPAnalytics.h"

#include "platform/EventLoop.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpServer>
#include <QTcpSocket>

#include <gtest/gtest.h>

#include <algorithm>

namespace kelvara {
namespace {

/// A web server on this machine that keeps what is posted to it and says yes.
class Counter : public QTcpServer {
public:
    Counter() {
        EXPECT_TRUE(listen(QHostAddress::LocalHost));
        connect(this, &QTcpServer::newConnection, this, [this] {
            auto* connection = nextPendingConnection();
            connect(connection, &QTcpSocket::readyRead, this, [this, connection] { read(*connection); });
        });
    }
    [[nodiscard]] QUrl address() const {
        return QUrl{QStringLiteral("http://127.0.0.1:%1/usage?key=1").arg(serverPort())};
    }

    QList<QByteArray> m_heads;
    QList<QJsonObject> m_events;
    int m_refusals = 0; ///< Requests still to be cut off.

private:
    void read(QTcpSocket& connection) {
        auto& request = m_unread[&connection];
        request += connection.readAll();
        for (;;) {
            const auto end = request.indexOf("\r\n\r\n");
            if (end < 0) return;
            const auto head = request.left(end).toLower();
            const auto from = head.indexOf("content-length:") + 15;
            const auto length = head.mid(from, head.indexOf('\r', from) - from).trimmed().toInt();
            if (request.size() < end + 4 + length) return;
            if (m_refusals > 0) {
                --m_refusals;
                return connection.abort();
            }
            m_heads += request.left(end);
            m_events += QJsonDocument::fromJson(request.mid(end + 4, length)).object();
            request.remove(0, end + 4 + length);
            connection.write("HTTP/1.1 204 No Content\r\nContent-Length: 0\r\nSet-Cookie: who=42\r\n\r\n");
        }
    }
    QHash<QTcpSocket*, QByteArray> m_unread;
};

QJsonObject event(const char* json) { return QJsonDocument::fromJson(json).object(); }
int countOf(const QJsonObject& sent) {
    return sent[QStringLiteral("properties")][QStringLiteral("count")].toInt();
}
const HTTPAnalytics::Versions versions{QStringLiteral("1.2"), QStringLiteral("Debian 12")};

} // namespace

TEST(HTTPAnalyticsTest, postsCountsAndVersionsAndNothingElse) {
    Counter counter;
    HTTPAnalytics analytics{counter.address(), versions};
    analytics.record(AppStarted{});
    analytics.record(PhotosCopied{.count = 12});
    analytics.record(PhotosShared{.count = 3, .byAirDrop = true, .withEdits = true});
    ASSERT_TRUE(runUntil([&] { return counter.m_events.size() == 3; }));
    EXPECT_EQ(counter.m_events[0], event(R"({"event": "app_started", "properties":
        {"app_version": "1.2", "os_version": "Debian 12"}})"));
    EXPECT_EQ(counter.m_events[1], event(R"({"event": "photos_copied", "properties":
        {"app_version": "1.2", "os_version": "Debian 12", "count": 12, "with_preset": false}})"));
    EXPECT_EQ(counter.m_events[2], event(R"({"event": "photos_shared", "properties":
        {"app_version": "1.2", "os_version": "Debian 12", "count": 3, "airdrop": true, "with_preset": false,
         "with_edits": true}})"));

    EXPECT_TRUE(counter.m_heads[0].startsWith("POST /usage?key=1 HTTP/1.1"));
    static const QList<QByteArray> usual{"host",       "content-type",    "user-agent",    "accept-language",
                                         "connection", "accept-encoding", "content-length"};
    for (const auto& head : counter.m_heads) {
        for (const auto& line : head.split('\n').mid(1)) {
            EXPECT_TRUE(usual.contains(line.left(line.indexOf(':')).toLower())) << line.constData();
        }
        EXPECT_TRUE(head.contains("User-Agent: Kelvara\r\n"));
        EXPECT_TRUE(head.contains("Accept-Language: *\r\n"));
    }
}

TEST(HTTPAnalyticsTest, withoutAnAddressOfTheWebNothingIsStarted) {
    const auto threads = [] { return QDir{QStringLiteral("/proc/self/task")}.entryList(QDir::Dirs); };
    const auto before = threads();
    for (const auto* address : {"", "file:///tmp/usage", "not an address"}) {
        HTTPAnalytics analytics{QUrl{QString::fromUtf8(address)}, versions};
        analytics.record(AppStarted{});
        analytics.forget();
        EXPECT_EQ(threads(), before) << address;
    }
}

TEST(HTTPAnalyticsTest, keepsNoMoreThanItsLimitWhileTheServerIsSlow) {
    Counter counter; // answers only while the event loop runs
    HTTPAnalytics analytics{counter.address(), versions};
    for (int i = 0; i < 3 * HTTPAnalytics::maximumUnderWay; ++i) analytics.record(PhotosCopied{.count = i});
    ASSERT_TRUE(runUntil([&] { return counter.m_events.size() == HTTPAnalytics::maximumUnderWay; }));
    // There is room again once the last answer is in.
    ASSERT_TRUE(runUntil([&] {
        analytics.record(AppStarted{});
        return counter.m_events.back()[QStringLiteral("event")] == QStringLiteral("app_started");
    }));
    const auto copies = std::count_if(counter.m_events.begin(), counter.m_events.end(), [](const auto& sent) {
        return sent[QStringLiteral("event")] == QStringLiteral("photos_copied");
    });
    EXPECT_EQ(copies, HTTPAnalytics::maximumUnderWay);
}

TEST(HTTPAnalyticsTest, whatIsForgottenIsNeverSent) {
    Counter counter;
    HTTPAnalytics analytics{counter.address(), versions};
    for (const int count : {1, 2, 3}) analytics.record(PhotosCopied{.count = count});
    analytics.forget();
    analytics.record(PhotosCopied{.count = 4});
    ASSERT_TRUE(
        runUntil([&] { return !counter.m_events.isEmpty() && countOf(counter.m_events.back()) == 4; }));
    for (const auto& sent : counter.m_events)
        EXPECT_TRUE(countOf(sent) == 1 || countOf(sent) == 4); // 1 was on its way
}

TEST(HTTPAnalyticsTest, anEventThatDoesNotArriveHoldsUpNoOther) {
    Counter counter;
    counter.m_refusals = 1;
    HTTPAnalytics analytics{counter.address(), versions};
    analytics.record(AppStarted{});
    analytics.record(PhotosCopied{.count = 5});
    ASSERT_TRUE(
        runUntil([&] { return !counter.m_events.isEmpty() && countOf(counter.m_events.back()) == 5; }));
    EXPECT_EQ(counter.m_refusals, 0);
}

} // namespace kelvara
