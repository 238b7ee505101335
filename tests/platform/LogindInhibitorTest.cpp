#include "platform/linux/LogindInhibitor.h"

#include "platform/BusDouble.h"
#include "platform/EventLoop.h"
#include "platform/PrivateBus.h"

#include <QDBusConnectionInterface>
#include <QDBusUnixFileDescriptor>
#include <QSocketNotifier>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace kelvara {
namespace {

/// A logind whose locks are the ends of a pipe, so that it sees when the last one is closed.
class LogindInhibitorTest : public testing::Test {
protected:
    void SetUp() override {
        if (!m_bus.problem().empty()) GTEST_SKIP() << m_bus.problem();
        ASSERT_TRUE(m_server.registerVirtualObject(QStringLiteral("/org/freedesktop/login1"), &m_logind));
        ASSERT_TRUE(m_server.registerService(QStringLiteral("org.freedesktop.login1")));
        ASSERT_EQ(::pipe(m_pipe), 0);
        m_logind.answers[QStringLiteral("Inhibit")] = [this](const QDBusMessage& call) {
            return m_isSlow ? QDBusMessage{} : grant(call);
        };
    }
    void TearDown() override {
        for (const auto end : m_pipe) ::close(end);
    }
    QDBusMessage grant(const QDBusMessage& call) {
        const QDBusUnixFileDescriptor lock{m_pipe[1]};
        ::close(std::exchange(m_pipe[1], -1));
        return call.createReply(QVariant::fromValue(lock));
    }
    /// Whether every copy of the lock is closed, within the patience of `runUntil`.
    bool isFreed() {
        bool isClosed = false;
        QSocketNotifier notifier{m_pipe[0], QSocketNotifier::Read};
        QObject::connect(&notifier, &QSocketNotifier::activated, [&] { isClosed = true; });
        return runUntil([&] { return isClosed; });
    }

    PrivateBus m_bus;
    BusDouble m_logind;
    QDBusConnection m_server = m_bus.connect();
    QDBusConnection m_client = m_bus.connect();
    LogindInhibitor m_inhibitor{m_client};
    int m_pipe[2] = {-1, -1};
    bool m_isSlow = false;
};

TEST_F(LogindInhibitorTest, holdsOneLockUntilItIsReleased) {
    m_inhibitor.hold("Photos are being copied");
    m_inhibitor.hold("Photos are being copied");
    ASSERT_TRUE(runUntil([&] { return m_pipe[1] < 0; }));
    ASSERT_EQ(m_logind.calls.size(), 1);
    EXPECT_EQ(m_logind.calls.front().arguments(),
              (QVariantList{QStringLiteral("sleep"), QStringLiteral("Kelvara"),
                            QStringLiteral("Photos are being copied"), QStringLiteral("block")}));
    // By the answer to a later call, those to earlier ones have arrived.
    m_client.interface()->isServiceRegistered(QStringLiteral("org.freedesktop.login1"));
    pollfd end{m_pipe[0], POLLIN, 0};
    EXPECT_EQ(::poll(&end, 1, 0), 0) << "the lock is not held";
    m_inhibitor.release();
    EXPECT_TRUE(isFreed());
}

TEST_F(LogindInhibitorTest, aLockThatComesTooLateIsGivenBack) {
    m_isSlow = true;
    m_inhibitor.hold("Photos are being copied");
    ASSERT_TRUE(runUntil([&] { return !m_logind.calls.isEmpty(); }));
    m_inhibitor.release();
    m_server.send(grant(m_logind.calls.front()));
    EXPECT_TRUE(isFreed());
}

TEST_F(LogindInhibitorTest, aRefusalAndAMissingServiceChangeNothing) {
    m_logind.answers[QStringLiteral("Inhibit")] = [](const QDBusMessage& call) {
        return call.createErrorReply(QDBusError::AccessDenied, QStringLiteral("no"));
    };
    m_inhibitor.hold("Photos are being copied");
    ASSERT_TRUE(runUntil([&] { return !m_logind.calls.isEmpty(); }));
    m_inhibitor.release();
    LogindInhibitor alone{QDBusConnection{QStringLiteral("not connected")}};
    alone.hold("Photos are being copied");
    alone.release();
}

} // namespace
} // namespace kelvara
