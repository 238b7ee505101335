#include "app/ScreenColorSpaceObserver.h"

#include "async/ThreadPool.h"
#include "imaging/DisplayColorSpace.h"
#include "platform/EventLoop.h"
#include "platform/PrivateBus.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/QtMainExecutor.h"
#include "support/TemporaryFolder.h"

#include <QApplication>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QScreen>
#include <QWidget>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <cstdlib>

namespace kelvara {
namespace {

/// The desktop's side of the X server: a program of its own that puts profiles on the root window.
class RootWindow {
public:
    RootWindow() : m_server{xcb_connect(nullptr, nullptr)} {}
    ~RootWindow() {
        setProfile(nullptr);
        xcb_disconnect(m_server);
    }
    RootWindow(const RootWindow&) = delete;
    RootWindow& operator=(const RootWindow&) = delete;

    void setProfile(const ColorProfilePtr& profile) {
        const std::string name = "_ICC_PROFILE";
        auto* reply = xcb_intern_atom_reply(
            m_server, xcb_intern_atom(m_server, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
            nullptr);
        const auto atom = reply->atom;
        std::free(reply);
        const auto root = xcb_setup_roots_iterator(xcb_get_setup(m_server)).data->root;
        if (profile) {
            xcb_change_property(m_server, XCB_PROP_MODE_REPLACE, root, atom, XCB_ATOM_CARDINAL, 8,
                                static_cast<std::uint32_t>(profile->icc().size()), profile->icc().data());
        } else {
            xcb_delete_property(m_server, root, atom);
        }
        std::free(xcb_get_input_focus_reply(m_server, xcb_get_input_focus(m_server), nullptr)); // a sync
    }

private:
    xcb_connection_t* m_server;
};

/// A colord with one screen and one profile.
class ColordDouble : public QDBusVirtualObject {
public:
    explicit ColordDouble(QString profileFile) : m_profileFile{std::move(profileFile)} {}
    void setProfile(QString file) { m_profileFile = std::move(file); }
    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        const auto isForScreen =
            message.arguments().value(1) == QVariant{QGuiApplication::primaryScreen()->name()};
        if (message.member() == u"FindDeviceByProperty" && isForScreen) {
            return answer(message, connection,
                          QVariant::fromValue(QDBusObjectPath{QStringLiteral("/screen")}));
        }
        if (message.path() == u"/screen") {
            const QList<QDBusObjectPath> profiles{QDBusObjectPath{QStringLiteral("/profile")}};
            return answer(message, connection,
                          QVariant::fromValue(QDBusVariant{QVariant::fromValue(profiles)}));
        }
        if (message.path() == u"/profile") {
            return answer(message, connection, QVariant::fromValue(QDBusVariant{m_profileFile}));
        }
        return connection.send(message.createErrorReply(QDBusError::InvalidArgs, QStringLiteral("unknown")));
    }

private:
    static bool answer(const QDBusMessage& message, const QDBusConnection& connection,
                       const QVariant& value) {
        return connection.send(message.createReply(value));
    }
    QString m_profileFile;
};

bool isCurrent(const ColorProfilePtr& profile) { return *DisplayColorSpace::current() == *profile; }

class ScreenColorSpaceTest : public testing::Test {
protected:
    void SetUp() override {
        if (QGuiApplication::platformName() != u"xcb") GTEST_SKIP() << "no virtual X server";
        if (!m_bus.problem().empty()) GTEST_SKIP() << m_bus.problem();
    }
    void TearDown() override { DisplayColorSpace::update(ColorProfile::sRGB()); }

    std::unique_ptr<ScreenColorSpaceObserver> observe() {
        return std::make_unique<ScreenColorSpaceObserver>(m_window, m_bus.connect(), m_files, m_background,
                                                          m_main, [this] { ++m_changes; });
    }

    QtMainExecutor m_main;
    ThreadPool m_background{1};
    LinuxFileSystem m_files;
    PrivateBus m_bus;
    RootWindow m_root;
    QWidget m_window;
    int m_changes = 0;
};

TEST_F(ScreenColorSpaceTest, followsTheProfileOfTheXServerAndTellsEachChangeOnce) {
    m_root.setProfile(ColorProfile::displayP3());
    const auto observer = observe();
    EXPECT_TRUE(isCurrent(ColorProfile::sRGB())) << "no screen has been seen";
    m_window.show();
    EXPECT_TRUE(isCurrent(ColorProfile::displayP3()));
    EXPECT_EQ(m_changes, 1);

    m_window.hide();
    m_window.show();
    m_root.setProfile(ColorProfile::displayP3()); // the same once more
    m_root.setProfile(ColorProfile::adobeRGB());
    ASSERT_TRUE(runUntil([] { return isCurrent(ColorProfile::adobeRGB()); }));
    EXPECT_EQ(m_changes, 2);
    m_root.setProfile(nullptr);
    ASSERT_TRUE(runUntil([] { return isCurrent(ColorProfile::sRGB()); }));
    EXPECT_EQ(m_changes, 3);
}

TEST_F(ScreenColorSpaceTest, asksColordWhereTheXServerHasNoProfile) {
    const TemporaryFolder folder;
    const auto& icc = ColorProfile::displayP3()->icc();
    const auto file = folder.write("screen.icc", {reinterpret_cast<const char*>(icc.data()), icc.size()});
    ColordDouble colord{QString::fromStdString(file.path())};
    auto bus = m_bus.connect();
    ASSERT_TRUE(bus.registerVirtualObject(QStringLiteral("/"), &colord, QDBusConnection::SubPath));
    ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.ColorManager")));

    const auto observer = observe();
    m_window.show();
    ASSERT_TRUE(runUntil([] { return isCurrent(ColorProfile::displayP3()); }));
    EXPECT_EQ(m_changes, 1);

    // The user chooses another profile, whose file can't be read.
    colord.setProfile(QStringLiteral("/nowhere.icc"));
    auto signal = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/ColorManager"),
                                             QStringLiteral("org.freedesktop.ColorManager"),
                                             QStringLiteral("DeviceChanged"));
    signal << QVariant::fromValue(QDBusObjectPath{QStringLiteral("/screen")});
    ASSERT_TRUE(bus.send(signal));
    ASSERT_TRUE(runUntil([] { return isCurrent(ColorProfile::sRGB()); }));
}

/// A screen nobody sees; without its program the tests are skipped.
void startScreen(OwnedProcess& server) {
    server.start(QStringLiteral("Xvfb"), {QStringLiteral("-displayfd"), QStringLiteral("1"),
                                          QStringLiteral("-nolisten"), QStringLiteral("tcp")});
    if (!server.waitForStarted() || !server.waitForReadyRead()) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return;
    }
    qputenv("DISPLAY", ':' + server.readLine().trimmed());
    qputenv("QT_QPA_PLATFORM", "xcb");
}

} // namespace
} // namespace kelvara

int main(int argumentCount, char** arguments) {
    kelvara::OwnedProcess screen;
    kelvara::startScreen(screen);
    int status = 0;
    {
        const QApplication application{argumentCount, arguments};
        testing::InitGoogleTest(&argumentCount, arguments);
        status = RUN_ALL_TESTS();
    }
    return status;
}
