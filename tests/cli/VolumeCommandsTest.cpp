// Runs the real program against a disk service of the test's own.

#include "cli/CommandLine.h"
#include "platform/PrivateBus.h"

#include <QDBusMessage>
#include <QDBusReply>

namespace kelvara {
namespace {

using testing::ElementsAre;

class VolumeCommandsTest : public CommandLineTest {
protected:
    void SetUp() override {
        if (!m_bus.problem().empty()) GTEST_SKIP() << m_bus.problem();
        if (!PrivateBus::hasMocks()) GTEST_SKIP() << "python3-dbusmock is not installed";
        m_udisks = m_bus.startMock(QStringLiteral("udisks_mock.py"), m_service);
        ASSERT_TRUE(m_udisks) << "the mock did not start";
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
        plug("reader", {{QStringLiteral("MediaRemovable"), true}, {QStringLiteral("Ejectable"), true}});
        plug("disk", {{QStringLiteral("Ejectable"), true}});
        mount("sda1", "disk", "Archive");
        mount("sdb2", "reader", "Card 10");
        mount("sdb1", "reader", "Card 2");
    }
    void TearDown() override { qunsetenv("DBUS_SYSTEM_BUS_ADDRESS"); }

    template <typename... Arguments> QDBusMessage tell(const char* method, const Arguments&... arguments) {
        auto call = QDBusMessage::createMethodCall(m_service, QStringLiteral("/org/freedesktop/UDisks2"),
                                                   QStringLiteral("org.freedesktop.DBus.Mock"),
                                                   QLatin1String{method});
        call.setArguments({QVariant{arguments}...});
        auto reply = m_control.call(call);
        EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
        return reply;
    }
    void plug(const char* drive, const QVariantMap& properties) {
        tell("PlugDrive", QString::fromLatin1(drive), properties);
    }
    /// Mounts a new volume in a folder that has the name of its block.
    void mount(const char* block, const char* drive, const char* label) {
        tell("PlugBlock", QString::fromLatin1(block), QString::fromLatin1(drive), QString::fromLatin1(label));
        tell("Mount", QString::fromLatin1(block), QString::fromStdString(card.makeFolder(block).path()));
    }
    [[nodiscard]] QStringList calls() { return QDBusReply<QStringList>{tell("Calls")}.value(); }

private:
    const QString m_service = QStringLiteral("org.freedesktop.UDisks2");
    PrivateBus m_bus;
    QDBusConnection m_control = m_bus.connect();
    std::unique_ptr<OwnedProcess> m_udisks;
};

TEST_F(VolumeCommandsTest, listsWhatIsMountedByName) {
    card.makeFolder("sdb1/DCIM");
    const auto json = run({"volumes", "--json"}).json();
    EXPECT_EQ(json.at("count"), 3);
    std::vector<std::string> names;
    for (const auto& volume : json.at("volumes")) names.push_back(volume.at("name"));
    EXPECT_THAT(names, ElementsAre("Archive", "Card 2", "Card 10"));
    const auto& card2 = json.at("volumes").at(1);
    EXPECT_EQ(card2.at("path"), card.at("sdb1").path());
    EXPECT_EQ(card2.at("url"), "file://" + card.at("sdb1").path());
    EXPECT_EQ(card2.at("source"), card.at("sdb1/DCIM").path());
    EXPECT_EQ(card2.at("removable"), true);
    EXPECT_GT(card2.at("totalCapacity"), 0);
    EXPECT_TRUE(card2.at("availableCapacity").is_number());

    const auto text = run({"volumes"});
    EXPECT_EQ(text.exitCode, 0);
    EXPECT_THAT(text.output, testing::MatchesRegex(
                                 "removable .*Archive\nremovable .* free of .*sdb1  Card 2\nremovable .*\n"));
}

TEST_F(VolumeCommandsTest, ejectsByNameOrPlaceOrSaysWhyNot) {
    EXPECT_EQ(run({"eject", "Card 3"}).errors, "kelvara-cli: No volume “Card 3” is mounted.\n");
    EXPECT_TRUE(calls().isEmpty());
    const auto json = run({"eject", "Card 2", "--json"}).json();
    EXPECT_EQ(json.at("name"), "Card 2");
    EXPECT_EQ(json.at("path"), card.at("sdb1").path());
    EXPECT_TRUE(calls().contains(QStringLiteral("Unmount sdb1")));
    EXPECT_TRUE(calls().contains(QStringLiteral("Eject reader")));
    EXPECT_EQ(run({"eject", "Card 2"}).exitCode, 1) << "it is gone";

    tell("Refuse", QStringLiteral("Unmount"), QStringLiteral("org.freedesktop.UDisks2.Error.DeviceBusy"),
         QStringLiteral("target is busy"));
    const auto refused = run({"eject", card.at("sda1").path() + "/"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.output, "");
    EXPECT_THAT(refused.errors, testing::StartsWith("kelvara-cli: Couldn't eject “Archive”: "));
}

TEST_F(VolumeCommandsTest, aNameThatSeveralHaveEjectsNone) {
    mount("sdc1", "disk", "Card 2");
    const auto result = run({"eject", "Card 2"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, testing::HasSubstr("Several volumes are called “Card 2”."));
    EXPECT_TRUE(calls().isEmpty());
    EXPECT_EQ(run({"eject"}).exitCode, 2);
}

} // namespace
} // namespace kelvara
