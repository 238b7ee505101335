#include "async/ThreadPool.h"
#include "platform/BusDouble.h"
#include "platform/EventLoop.h"
#include "platform/PrivateBus.h"
#include "platform/linux/BluetoothDevices.h"
#include "platform/linux/NearbyDevices.h"
#include "platform/linux/PortalTargets.h"
#include "platform/linux/QtMainExecutor.h"
#include "support/TemporaryFolder.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QFileSystemWatcher>
#include <gmock/gmock.h>
#include <unistd.h>

namespace kelvara {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Interfaces = QMap<QString, QVariantMap>;
using Objects = QMap<QDBusObjectPath, Interfaces>;

const auto transferInterface = QStringLiteral("org.bluez.obex.Transfer1");
const auto session = QStringLiteral("/org/bluez/obex/client/session0");

QString text(const char* utf8) { return QString::fromUtf8(utf8); }

std::string contents(const QDBusUnixFileDescriptor& file) {
    std::string bytes(64, '\0');
    const auto size = ::pread(file.fileDescriptor(), bytes.data(), bytes.size(), 0);
    bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    return bytes;
}

} // namespace

/// Every service that files are handed to, on one connection of a bus of the test's own.
class ShareTargetsTest : public testing::Test {
protected:
    void SetUp() override {
        if (!m_bus.problem().empty()) GTEST_SKIP() << m_bus.problem();
        ASSERT_TRUE(
            m_serverBus.registerVirtualObject(QStringLiteral("/"), &m_server, QDBusConnection::SubPath));
    }
    void provide(const char* service) { ASSERT_TRUE(m_serverBus.registerService(text(service))); }
    [[nodiscard]] QDBusMessage call(const char* member) const {
        for (const auto& call : m_server.calls) {
            if (call.member() == text(member)) return call;
        }
        return {};
    }
    [[nodiscard]] int count(const char* member) const {
        return static_cast<int>(
            std::count_if(m_server.calls.begin(), m_server.calls.end(),
                          [name = text(member)](const auto& call) { return call.member() == name; }));
    }
    static std::vector<ShareTarget> found(ShareTargets& targets) {
        std::optional<std::vector<ShareTarget>> result;
        targets.find([&](auto answer) { result = std::move(answer); });
        EXPECT_TRUE(runUntil([&] { return result.has_value(); }));
        return result.value_or(std::vector<ShareTarget>{});
    }
    SharePicker::OnEnd end() {
        m_end.reset();
        return [this](const Result<void, std::string>& result) {
            m_end = result ? std::string{"sent"} : result.error();
        };
    }
    std::string outcome() {
        EXPECT_TRUE(runUntil([this] { return m_end.has_value(); }));
        return m_end.value_or("");
    }
    std::string outcome(ShareTargets& targets, const ShareTarget& to, std::vector<FileURL> files) {
        targets.send(to, std::move(files), end());
        return outcome();
    }
    /// Answers a request of the portal, and its dialog with `response`.
    void answerPortal(const char* method, uint response) {
        m_server.answers[text(method)] = [this, response](const QDBusMessage& call) {
            const auto options = qdbus_cast<QVariantMap>(call.arguments().constLast());
            const auto path = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
                                  .arg(call.service().mid(1).replace(u'.', u'_'),
                                       options.value(QStringLiteral("handle_token")).toString());
            auto signal = QDBusMessage::createSignal(path, QStringLiteral("org.freedesktop.portal.Request"),
                                                     QStringLiteral("Response"));
            m_serverBus.send(signal << response << QVariantMap{});
            return call.createReply(QVariant::fromValue(QDBusObjectPath{path}));
        };
    }
    /// Tells of a transfer as the OBEX service does, on whose path nobody was told yet.
    void tellTransfer(const char* status) {
        auto signal = QDBusMessage::createSignal(session + QStringLiteral("/transfer0"),
                                                 QStringLiteral("org.freedesktop.DBus.Properties"),
                                                 QStringLiteral("PropertiesChanged"));
        m_serverBus.send(signal << transferInterface << QVariantMap{{QStringLiteral("Status"), text(status)}}
                                << QStringList{});
    }

    PrivateBus m_bus;
    QDBusConnection m_serverBus = m_bus.connect();
    BusDouble m_server;
    TemporaryFolder m_folder;
    FileURL m_first = m_folder.write("a.jpg", "first");
    FileURL m_second = m_folder.write("b \xff.jpg", "second");
    QtMainExecutor m_main;
    ThreadPool m_background{1};
    std::optional<std::string> m_end; // "sent" or the sentence
};

TEST_F(ShareTargetsTest, thePortalGetsOpenFilesAndItsDialogsEndIsTold) {
    provide("org.freedesktop.portal.Desktop");
    DesktopPortal portal{m_bus.connect(), m_background, m_main};
    EmailTarget email{portal, QStringLiteral("no-such-command")};
    OtherProgramTarget program{portal};
    ASSERT_EQ(found(email).size(), 1U);
    ASSERT_EQ(found(program).size(), 1U);

    answerPortal("ComposeEmail", 0);
    EXPECT_EQ(outcome(email, {}, {m_first, m_second}), "sent");
    const auto compose = call("ComposeEmail");
    EXPECT_EQ(compose.signature(), QStringLiteral("sa{sv}"));
    const auto options = qdbus_cast<QVariantMap>(compose.arguments().at(1));
    const auto files = qdbus_cast<DesktopPortal::Descriptors>(options[QStringLiteral("attachment_fds")]);
    ASSERT_EQ(files.size(), 2);
    EXPECT_EQ(contents(files[0]), "first");
    EXPECT_EQ(contents(files[1]), "second");

    answerPortal("OpenFile", 0);
    EXPECT_EQ(outcome(program, {}, {m_first}), "sent");
    const auto open = call("OpenFile");
    EXPECT_EQ(open.signature(), QStringLiteral("sha{sv}"));
    EXPECT_EQ(contents(open.arguments().at(1).value<QDBusUnixFileDescriptor>()), "first");
    EXPECT_TRUE(qdbus_cast<QVariantMap>(open.arguments().at(2))[QStringLiteral("ask")].toBool());
}

TEST_F(ShareTargetsTest, whatThePortalCannotDoIsOneSentence) {
    provide("org.freedesktop.portal.Desktop");
    DesktopPortal portal{m_bus.connect(), m_background, m_main};
    EmailTarget email{portal};
    OtherProgramTarget program{portal};
    const auto missing = m_folder / "gone.jpg";
    EXPECT_EQ(outcome(email, {}, {missing}), "“gone.jpg”: No such file or directory");
    EXPECT_EQ(outcome(email, {}, std::vector(17, m_first)),
              "An e-mail takes 16 photos at most. Share fewer at a time.");
    EXPECT_EQ(count("ComposeEmail"), 0);

    answerPortal("ComposeEmail", 1); // closed by the user, who needs no message
    bool wasTold = false;
    email.send({}, {m_first}, [&](const auto&) { wasTold = true; });
    answerPortal("OpenFile", 2);
    EXPECT_EQ(outcome(program, {}, {m_first}), "a.jpg couldn't be opened with another program.");
    EXPECT_EQ(count("ComposeEmail"), 1);
    EXPECT_FALSE(wasTold);
    m_server.answers[QStringLiteral("ComposeEmail")] = [](const QDBusMessage& call) {
        return call.createErrorReply(QDBusError::AccessDenied, QStringLiteral("no"));
    };
    EXPECT_EQ(outcome(email, {}, {m_first}), "The e-mail couldn't be prepared.");
}

TEST_F(ShareTargetsTest, withoutAPortalTheCommandWritesTheEmail) {
    DesktopPortal portal{m_bus.connect(), m_background, m_main};
    const auto result = m_folder / "arguments";
    const auto script = m_folder.write("mailer", "#!/bin/sh\nprintf '%s|' \"$@\" > " + result.path() +
                                                     ".part\nmv " + result.path() + ".part " + result.path());
    std::filesystem::permissions(script.path(), std::filesystem::perms::owner_all);
    QFileSystemWatcher watcher{{QString::fromStdString(m_folder.url().path())}};

    EmailTarget email{portal, QString::fromStdString(script.path())};
    const auto targets = found(email);
    ASSERT_EQ(targets.size(), 1U);
    EXPECT_EQ(outcome(email, targets[0], {m_first}), "sent");
    ASSERT_TRUE(runUntil([&] { return TemporaryFolder::exists(result); }));
    EXPECT_EQ(TemporaryFolder::read(result), "--attach|" + m_first.path() + "|");

    EmailTarget nobody{portal, QStringLiteral("no-such-command")};
    EXPECT_THAT(found(nobody), IsEmpty());
    OtherProgramTarget program{portal};
    EXPECT_THAT(found(program), IsEmpty());
}

TEST_F(ShareTargetsTest, devicesNearbyAreThoseThatAreReachableAndPaired) {
    NearbyDevices withoutBus{QDBusConnection{QStringLiteral("nowhere")}};
    EXPECT_THAT(found(withoutBus), IsEmpty());
    NearbyDevices devices{m_bus.connect()};
    EXPECT_THAT(found(devices), IsEmpty());
    provide("org.kde.kdeconnect");
    qDBusRegisterMetaType<QMap<QString, QString>>();
    m_server.answers[QStringLiteral("deviceNames")] = [](const QDBusMessage& call) {
        return call.createReply(
            QVariant::fromValue(QMap<QString, QString>{{text("a_1"), text("Käthe’s Phone")}}));
    };
    const ShareTarget phone{"a_1", "Käthe’s Phone"};
    EXPECT_THAT(found(devices), ElementsAre(phone));
    EXPECT_EQ(call("deviceNames").arguments(), (QVariantList{true, true}));

    EXPECT_EQ(outcome(devices, phone, {m_second}), "sent");
    const auto share = call("shareUrls");
    EXPECT_EQ(share.path(), QStringLiteral("/modules/kdeconnect/devices/a_1/share"));
    EXPECT_EQ(share.signature(), QStringLiteral("as"));
    EXPECT_EQ(share.arguments().at(0).toStringList(),
              QStringList{QString::fromStdString(m_folder.url().uri()) + text("/b%20%FF.jpg")});
    m_server.answers[QStringLiteral("shareUrls")] = [](const QDBusMessage& call) {
        return call.createErrorReply(QDBusError::Failed, QStringLiteral("no"));
    };
    EXPECT_EQ(outcome(devices, phone, {m_first}), "The files couldn't be sent to Käthe’s Phone.");
}

TEST_F(ShareTargetsTest, bluetoothOffersPairedDevicesThatTakeFilesWhileItIsOn) {
    qDBusRegisterMetaType<Interfaces>();
    qDBusRegisterMetaType<Objects>();
    const auto adapter = [](bool isOn) {
        return Interfaces{{text("org.bluez.Adapter1"), {{text("Powered"), isOn}}}};
    };
    const auto device = [](const char* name, const char* adapterPath, bool isPaired, const char* profile) {
        return Interfaces{{text("org.bluez.Device1"),
                           {{text("Alias"), text(name)},
                            {text("Address"), text(name) + text(":00")},
                            {text("Adapter"), QVariant::fromValue(QDBusObjectPath{text(adapterPath)})},
                            {text("Paired"), isPaired},
                            {text("UUIDs"), QStringList{text(profile)}}}}};
    };
    constexpr auto objectPush = "00001105-0000-1000-8000-00805f9b34fb";
    constexpr auto headset = "0000110b-0000-1000-8000-00805f9b34fb";
    const Objects objects{{QDBusObjectPath{text("/on")}, adapter(true)},
                          {QDBusObjectPath{text("/off")}, adapter(false)},
                          {QDBusObjectPath{text("/1")}, device("Phone", "/on", true, objectPush)},
                          {QDBusObjectPath{text("/2")}, device("Headset", "/on", true, headset)},
                          {QDBusObjectPath{text("/3")}, device("Stranger", "/on", false, objectPush)},
                          {QDBusObjectPath{text("/4")}, device("Unreachable", "/off", true, objectPush)}};
    m_server.answers[QStringLiteral("GetManagedObjects")] = [objects](const QDBusMessage& call) {
        return call.createReply(QVariant::fromValue(objects));
    };
    BluetoothDevices devices{m_bus.connect(), m_bus.connect()};
    EXPECT_THAT(found(devices), IsEmpty());
    provide("org.bluez");
    EXPECT_THAT(found(devices), IsEmpty()) << "nothing there that could send files";
    provide("org.bluez.obex");
    EXPECT_THAT(found(devices), ElementsAre(ShareTarget{"Phone:00", "Phone"}));
}

TEST_F(ShareTargetsTest, bluetoothSendsOneFileAfterTheOtherAndClosesItsSession) {
    provide("org.bluez.obex");
    m_server.answers[QStringLiteral("CreateSession")] = [](const QDBusMessage& call) {
        return call.createReply(QVariant::fromValue(QDBusObjectPath{session}));
    };
    const char* status = "complete";
    m_server.answers[QStringLiteral("SendFile")] = [&](const QDBusMessage& call) {
        tellTransfer("active");
        tellTransfer(status); // a small file is through before the reply is
        return call.createReply();
    };
    BluetoothDevices devices{m_bus.connect(), m_bus.connect()};
    const ShareTarget phone{"00:11:22", "Phone"};
    EXPECT_EQ(outcome(devices, phone, {m_first, m_first}), "sent");
    const auto create = call("CreateSession");
    EXPECT_EQ(create.arguments().at(0).toString(), QStringLiteral("00:11:22"));
    EXPECT_EQ(qdbus_cast<QVariantMap>(create.arguments().at(1))[text("Target")].toString(), text("opp"));
    EXPECT_EQ(call("SendFile").path(), session);
    EXPECT_EQ(call("SendFile").arguments().at(0).toString().toStdString(), m_first.path());
    EXPECT_EQ(count("SendFile"), 2);
    ASSERT_TRUE(runUntil([&] { return count("RemoveSession") == 1; }));

    status = "error";
    EXPECT_EQ(outcome(devices, phone, {m_first, m_first}), "The files couldn't be sent to Phone.");
    EXPECT_EQ(count("SendFile"), 3);
    ASSERT_TRUE(runUntil([&] { return count("RemoveSession") == 2; }));
    status = "active"; // and never more
    devices.send(phone, {m_first}, end());
    ASSERT_TRUE(runUntil([&] { return count("SendFile") == 4; }));
    m_serverBus.unregisterService(QStringLiteral("org.bluez.obex"));
    EXPECT_EQ(outcome(), "The files couldn't be sent to Phone.");
    provide("org.bluez.obex");
    m_server.answers.remove(QStringLiteral("CreateSession")); // answers without a session
    EXPECT_EQ(outcome(devices, phone, {m_first}), "The files couldn't be sent to Phone.");
}

TEST_F(ShareTargetsTest, answersThatComeTooLateReachNobody) {
    provide("org.freedesktop.portal.Desktop");
    provide("org.kde.kdeconnect");
    int answers = 0;
    {
        DesktopPortal portal{m_bus.connect(), m_background, m_main};
        NearbyDevices devices{m_bus.connect()};
        portal.find(QStringLiteral("Email"), [&](bool) { ++answers; });
        devices.find([&](const auto&) { ++answers; });
        EmailTarget{portal}.send({}, {m_first}, [&](const auto&) { ++answers; });
    }
    NearbyDevices witness{m_bus.connect()};
    ASSERT_TRUE(runUntil([&] { return count("Get") == 1 && count("deviceNames") >= 1; }));
    EXPECT_THAT(found(witness), IsEmpty());
    EXPECT_EQ(answers, 0);
}

} // namespace kelvara
