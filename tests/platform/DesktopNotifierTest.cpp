#include "platform/linux/DesktopNotifier.h"

#include "platform/BusDouble.h"
#include "platform/EventLoop.h"
#include "platform/PrivateBus.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

const auto path = QStringLiteral("/org/freedesktop/Notifications");
const auto name = QStringLiteral("org.freedesktop.Notifications");

class DesktopNotifierTest : public testing::Test {
protected:
    void SetUp() override {
        if (!m_bus.problem().empty()) GTEST_SKIP() << m_bus.problem();
    }
    void startServer(const QStringList& capabilities) {
        ASSERT_TRUE(m_serverBus.registerVirtualObject(path, &m_server));
        ASSERT_TRUE(m_serverBus.registerService(name));
        m_server.answers[QStringLiteral("GetCapabilities")] = [capabilities](const QDBusMessage& call) {
            return call.createReply(capabilities);
        };
        m_server.answers[QStringLiteral("Notify")] = [this](const QDBusMessage& call) {
            m_shown = call.arguments();
            return call.createReply(41U);
        };
    }
    /// The arguments with which the server was asked to show it.
    QVariantList show(const Notification& notification) {
        m_shown.clear();
        m_notifier.notify(notification);
        EXPECT_TRUE(runUntil([&] { return !m_shown.isEmpty(); }));
        return m_shown;
    }
    void choose(uint id, const QString& action) {
        auto signal = QDBusMessage::createSignal(path, name, QStringLiteral("ActionInvoked"));
        m_serverBus.send(signal << id << action);
    }

    PrivateBus m_bus;
    QDBusConnection m_serverBus = m_bus.connect();
    BusDouble m_server;
    QVariantList m_shown;
    int m_activations = 0;
    DesktopNotifier m_notifier{m_bus.connect(), QStringLiteral("kelvara"), [this] { ++m_activations; }};
};

TEST_F(DesktopNotifierTest, theLastOneIsReplacedAndChoosingItIsTold) {
    startServer({QStringLiteral("body"), QStringLiteral("body-markup"), QStringLiteral("actions")});
    auto shown = show({"Copy Complete", "12 copied <&>"});
    ASSERT_EQ(shown.size(), 8);
    EXPECT_EQ(shown[1].toUInt(), 0U);
    EXPECT_EQ(shown[3].toString(), QStringLiteral("Copy Complete"));
    EXPECT_EQ(shown[4].toString(), QStringLiteral("12 copied &lt;&amp;&gt;"));
    EXPECT_EQ(shown[5].toStringList().value(0), QStringLiteral("default"));
    // Its number has arrived when the second one replaces it.
    ASSERT_TRUE(runUntil([&] { return show({"Copy Complete", ""})[1].toUInt() == 41; }));
    choose(7, QStringLiteral("default")); // another program's
    choose(41, QStringLiteral("default"));
    EXPECT_TRUE(runUntil([&] { return m_activations > 0; }));
    EXPECT_EQ(m_activations, 1);
}

TEST_F(DesktopNotifierTest, aSimpleServerGetsALineWithoutActions) {
    startServer({});
    const auto shown = show({"Copy Complete", "12 copied"});
    ASSERT_EQ(shown.size(), 8);
    EXPECT_EQ(shown[3].toString(), QStringLiteral("Copy Complete: 12 copied"));
    EXPECT_EQ(shown[4].toString(), QString{});
    EXPECT_TRUE(shown[5].toStringList().isEmpty());
}

} // namespace
} // namespace kelvara
