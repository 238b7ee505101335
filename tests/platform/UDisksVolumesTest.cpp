#include "platform/linux/UDisksVolumes.h"

#include "platform/EventLoop.h"
#include "platform/PrivateBus.h"
#include "platform/linux/EjectProblem.h"
#include "support/TemporaryFolder.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVirtualObject>
#include <atomic>
#include <gtest/gtest.h>
#include <latch>

namespace kelvara {

void PrintTo(const FileURL& url, std::ostream* stream) { *stream << url.path(); }

namespace {

const auto diskService = QStringLiteral("org.freedesktop.UDisks2");
const auto managerPath = QStringLiteral("/org/freedesktop/UDisks2");

class UDisksVolumesTest : public testing::Test {
protected:
    void SetUp() override {
        if (!m_bus.problem().empty()) GTEST_SKIP() << m_bus.problem();
        if (!PrivateBus::hasMocks()) GTEST_SKIP() << "python3-dbusmock is not installed";
        m_machine.mountTable = [this] { return m_mountTable; };
        m_machine.patience = std::chrono::minutes{5};
        m_machine.isRemovable = [](const MountEntry&) { return true; };
    }

    void startUDisks() {
        m_udisks = m_bus.startMock(QStringLiteral("udisks_mock.py"), diskService);
        ASSERT_TRUE(m_udisks) << "the mock did not start";
    }
    [[nodiscard]] std::unique_ptr<UDisksVolumes> makeVolumes() {
        auto volumes = std::make_unique<UDisksVolumes>(m_bus.connect(), m_machine);
        volumes->observe([this](const VolumeChange& change) { m_changes.push_back(change); });
        return volumes;
    }

    template <typename... Arguments> QDBusMessage tell(const char* method, const Arguments&... arguments) {
        auto call = QDBusMessage::createMethodCall(
            diskService, managerPath, QStringLiteral("org.freedesktop.DBus.Mock"), QLatin1String{method});
        call.setArguments({QVariant{arguments}...});
        auto reply = m_control.call(call);
        EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
        return reply;
    }
    void plugReader(const char* name) {
        tell("PlugDrive", QString::fromLatin1(name),
             QVariantMap{{QStringLiteral("Removable"), true},
                         {QStringLiteral("MediaRemovable"), true},
                         {QStringLiteral("Ejectable"), true},
                         {QStringLiteral("CanPowerOff"), true}});
    }
    void plugBlock(const char* name, const char* drive, const char* label) {
        tell("PlugBlock", QString::fromLatin1(name), QString::fromLatin1(drive), QString::fromLatin1(label));
    }
    /// Mounts a block at a real folder, as only there is a capacity.
    FileURL mount(const char* block, const char* folder) {
        auto url = m_folder.makeFolder(folder);
        tell("Mount", QString::fromLatin1(block), QString::fromStdString(url.path()));
        return url;
    }
    void refuse(const char* method, const char* error, const char* message) {
        tell("Refuse", QString::fromLatin1(method), QString::fromLatin1(error), QString::fromLatin1(message));
    }
    [[nodiscard]] QStringList calls() { return QDBusReply<QStringList>{tell("Calls")}.value(); }

    [[nodiscard]] static std::vector<VolumeInfo> listed(Volumes& volumes) {
        std::optional<std::vector<VolumeInfo>> answer;
        volumes.list([&](std::vector<VolumeInfo> infos) { answer = std::move(infos); });
        EXPECT_FALSE(answer) << "answered before it returned";
        EXPECT_TRUE(runUntil([&] { return answer.has_value(); }));
        return answer.value_or(std::vector<VolumeInfo>{});
    }
    [[nodiscard]] static std::vector<FileURL> listedURLs(Volumes& volumes) {
        std::vector<FileURL> urls;
        for (const auto& volume : listed(volumes)) urls.push_back(volume.url);
        return urls;
    }
    /// The error's sentence; empty where ejecting went well.
    [[nodiscard]] static std::string ejected(Volumes& volumes, const FileURL& volume) {
        std::optional<std::string> answer;
        volumes.eject(volume, [&](const Result<void, std::string>& result) {
            answer = result ? std::string{} : result.error();
        });
        EXPECT_FALSE(answer) << "answered before it returned";
        EXPECT_TRUE(runUntil([&] { return answer.has_value(); }));
        return answer.value_or("no answer");
    }
    [[nodiscard]] bool runUntilChanges(std::size_t count) {
        return runUntil([&] { return m_changes.size() >= count; });
    }

    PrivateBus m_bus;
    QDBusConnection m_control = m_bus.connect();
    std::unique_ptr<OwnedProcess> m_udisks;
    TemporaryFolder m_folder;
    std::vector<MountEntry> m_mountTable;
    UDisksVolumes::Machine m_machine;
    std::vector<VolumeChange> m_changes;
};

bool isChange(const VolumeChange& change, const FileURL& url, bool didUnmount) {
    return change.url == url && change.didUnmount == didUnmount;
}

TEST_F(UDisksVolumesTest, listsTheMountedWithCapacityAndCameraFolder) {
    startUDisks();
    plugReader("reader");
    plugBlock("sdb1", "reader", "KELVA_CARD");
    plugBlock("sdb2", "reader", "");
    plugBlock("sdb3", "reader", "not mounted");
    const auto card = mount("sdb1", "one");
    m_folder.makeFolder("one/DCIM");
    const auto plain = mount("sdb2", "plain");
    m_folder.makeFolder("plain/dcim");
    tell("Mount", QStringLiteral("sdb3"), QStringLiteral("/media/me/gone"));

    const auto volumes = makeVolumes();
    const auto infos = listed(*volumes);
    ASSERT_EQ(infos.size(), 2U);
    EXPECT_EQ(infos[0].url, card);
    EXPECT_EQ(infos[0].name, "KELVA_CARD");
    EXPECT_TRUE(infos[0].isRemovable);
    EXPECT_EQ(infos[0].preferredSourceURL, card.child("DCIM"));
    const auto space = std::filesystem::space(card.path());
    EXPECT_EQ(infos[0].totalCapacity, static_cast<std::int64_t>(space.capacity));
    EXPECT_GT(infos[0].availableCapacity.value_or(0), 0);
    EXPECT_LE(infos[0].availableCapacity, infos[0].totalCapacity);
    EXPECT_EQ(infos[1].name, "plain");
    EXPECT_EQ(infos[1].preferredSourceURL, plain);
}

TEST_F(UDisksVolumesTest, aCardIsToldWhenItIsMountedAndWhenItIsPulled) {
    startUDisks();
    const auto volumes = makeVolumes();
    EXPECT_TRUE(listed(*volumes).empty());
    plugReader("reader");
    plugBlock("sdb1", "reader", "KELVA_CARD");
    const auto card = mount("sdb1", "card");
    ASSERT_TRUE(runUntilChanges(1));
    EXPECT_TRUE(isChange(m_changes[0], card, false));
    EXPECT_EQ(listedURLs(*volumes), std::vector{card});

    tell("Unplug", QStringLiteral("reader"));
    ASSERT_TRUE(runUntilChanges(2));
    EXPECT_TRUE(isChange(m_changes[1], card, true));
    EXPECT_TRUE(listed(*volumes).empty());
    EXPECT_EQ(m_changes.size(), 2U);
}

TEST_F(UDisksVolumesTest, anExternalDiskIsUnmountedEjectedAndSwitchedOff) {
    startUDisks();
    tell("PlugDrive", QStringLiteral("disk"),
         QVariantMap{{QStringLiteral("Ejectable"), true}, {QStringLiteral("CanPowerOff"), true}});
    plugBlock("sdb1", "disk", "Photos");
    plugBlock("sdb2", "disk", "Backup");
    const auto photos = mount("sdb1", "photos");
    const auto backup = mount("sdb2", "backup");
    const auto volumes = makeVolumes();
    ASSERT_EQ(listed(*volumes).size(), 2U);

    EXPECT_EQ(ejected(*volumes, backup), "");
    EXPECT_EQ(calls(), QStringList({QStringLiteral("Unmount sdb1"), QStringLiteral("Unmount sdb2"),
                                    QStringLiteral("Eject disk"), QStringLiteral("PowerOff disk")}));
    ASSERT_TRUE(runUntilChanges(2));
    EXPECT_TRUE(isChange(m_changes[0], photos, true));
    EXPECT_TRUE(isChange(m_changes[1], backup, true));
    EXPECT_EQ(ejected(*volumes, backup), "It isn't mounted any more.");
}

TEST_F(UDisksVolumesTest, aBusyVolumeStaysAndTheSentenceSaysWhy) {
    startUDisks();
    plugReader("reader");
    plugBlock("sdb1", "reader", "KELVA_CARD");
    const auto card = mount("sdb1", "card");
    refuse("Unmount", "org.freedesktop.UDisks2.Error.DeviceBusy",
           "Error unmounting /dev/sdb1: target is busy");
    const auto volumes = makeVolumes();
    ASSERT_EQ(listed(*volumes).size(), 1U);
    EXPECT_EQ(
        ejected(*volumes, card),
        "“KELVA_CARD” is in use by another program (target is busy). Close what uses it and try again.");
    EXPECT_EQ(calls(), QStringList{QStringLiteral("Unmount sdb1")});
    EXPECT_EQ(listedURLs(*volumes), std::vector{card});
    EXPECT_TRUE(m_changes.empty());
}

TEST_F(UDisksVolumesTest, aRefusalAfterUnmountingIsToldUnlessItDoesNotMatter) {
    startUDisks();
    plugReader("reader");
    plugBlock("sdb1", "reader", "KELVA_CARD");
    auto card = mount("sdb1", "card");
    const auto volumes = makeVolumes();
    ASSERT_EQ(listed(*volumes).size(), 1U);
    refuse("Eject", "org.freedesktop.UDisks2.Error.NotAuthorized", "Not authorized to perform operation");
    EXPECT_EQ(ejected(*volumes, card), "You don't have permission to eject it.");

    card = mount("sdb1", "card");
    ASSERT_TRUE(runUntilChanges(2));
    refuse("Eject", "org.freedesktop.DBus.Error.UnknownObject", "the card was pulled in between");
    refuse("Unmount", "org.freedesktop.UDisks2.Error.NotMounted", "somebody else was quicker");
    EXPECT_EQ(ejected(*volumes, card), "");
}

TEST_F(UDisksVolumesTest, withoutUDisksTheMountTableIsListedAndNothingEjected) {
    const auto card = m_folder.makeFolder("card");
    m_mountTable = {{8, 17, "/", card.path(), "vfat", "/dev/sdb1"}, {0, 30, "/", "/run", "tmpfs", "tmpfs"}};
    const auto volumes = makeVolumes();
    EXPECT_EQ(listedURLs(*volumes), std::vector{card});
    EXPECT_EQ(ejected(*volumes, card), diskServiceIsMissing());
}

TEST_F(UDisksVolumesTest, aBusThatIsNotThereIsLikeNoUDisks) {
    const auto card = m_folder.makeFolder("card");
    m_mountTable = {{8, 17, "/", card.path(), "vfat", "/dev/sdb1"}};
    UDisksVolumes volumes{QDBusConnection{QStringLiteral("no such connection")}, m_machine};
    EXPECT_EQ(listedURLs(volumes), std::vector{card});
    EXPECT_EQ(ejected(volumes, card), diskServiceIsMissing());
}

TEST_F(UDisksVolumesTest, udisksMayComeAndGo) {
    const auto both = m_folder.makeFolder("both");
    const auto tableOnly = m_folder.makeFolder("tableOnly");
    m_mountTable = {{8, 17, "/", both.path(), "vfat", "/dev/sdb1"},
                    {8, 33, "/", tableOnly.path(), "vfat", "/dev/sdc1"}};
    const auto volumes = makeVolumes();
    EXPECT_EQ(listedURLs(*volumes), (std::vector{both, tableOnly}));

    startUDisks();
    plugReader("reader");
    plugBlock("sdb1", "reader", "Both");
    plugBlock("sdd1", "reader", "Service");
    mount("sdb1", "both");
    const auto serviceOnly = mount("sdd1", "serviceOnly");
    ASSERT_TRUE(runUntil([&] { return !m_changes.empty() && m_changes.back().url == serviceOnly; }));
    EXPECT_EQ(listedURLs(*volumes), (std::vector{both, serviceOnly}));

    m_changes.clear();
    m_udisks.reset();
    ASSERT_TRUE(runUntilChanges(2));
    EXPECT_TRUE(isChange(m_changes[0], serviceOnly, true)) << "nothing says that it is still mounted";
    EXPECT_TRUE(isChange(m_changes[1], tableOnly, false));
    EXPECT_EQ(listedURLs(*volumes), (std::vector{both, tableOnly}));
    EXPECT_EQ(m_changes.size(), 2U) << "what is mounted all along is not told";
}

TEST_F(UDisksVolumesTest, aBusThatDiesIsLikeUDisksGone) {
    startUDisks();
    plugReader("reader");
    plugBlock("sdb1", "reader", "KELVA_CARD");
    const auto card = mount("sdb1", "card");
    const auto volumes = makeVolumes();
    ASSERT_EQ(listed(*volumes).size(), 1U);
    m_bus.stop();
    ASSERT_TRUE(runUntilChanges(1));
    EXPECT_TRUE(isChange(m_changes[0], card, true));
    EXPECT_EQ(ejected(*volumes, card), diskServiceIsMissing());
}

/// A disk service that takes every call and answers none.
class SilentService : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage&, const QDBusConnection&) override { return true; }
};

TEST_F(UDisksVolumesTest, aSilentServiceDoesNotHoldTheListBack) {
    SilentService service;
    auto bus = m_bus.connect();
    ASSERT_TRUE(bus.registerVirtualObject(managerPath, &service));
    ASSERT_TRUE(bus.registerService(diskService));
    int reads = 0;
    m_machine.patience = std::chrono::milliseconds{1};
    m_machine.mountTable = [&] {
        ++reads;
        return std::vector<MountEntry>{};
    };
    const auto volumes = makeVolumes();
    EXPECT_TRUE(listed(*volumes).empty());
    EXPECT_GT(reads, 0);
}

TEST_F(UDisksVolumesTest, aVolumeThatDoesNotAnswerIsLeftOutUntilItDoes) {
    const auto dead = m_folder.makeFolder("dead");
    m_mountTable = {{8, 17, "/", dead.path(), "vfat", "/dev/sdb1"}};
    auto released = std::make_shared<std::latch>(1);
    auto looks = std::make_shared<std::atomic<int>>(0);
    m_machine.patience = std::chrono::milliseconds{1};
    m_machine.look = [released, looks](const FileURL& volume) {
        ++*looks;
        released->wait();
        return readVolumeFacts(volume);
    };
    const auto volumes = makeVolumes();
    EXPECT_TRUE(listed(*volumes).empty());
    EXPECT_TRUE(listed(*volumes).empty());
    released->count_down();
    ASSERT_TRUE(runUntilChanges(1));
    EXPECT_TRUE(isChange(m_changes[0], dead, false));
    EXPECT_EQ(*looks, 1) << "one thread for a volume, however often it is listed";
}

TEST_F(UDisksVolumesTest, aVolumeThatHasAnsweredStaysListedWhileItIsSlow) {
    const auto slow = m_folder.makeFolder("slow");
    m_mountTable = {{8, 17, "/", slow.path(), "vfat", "/dev/sdb1"}};
    auto released = std::make_shared<std::latch>(1);
    auto looks = std::make_shared<std::atomic<int>>(0);
    m_machine.patience = std::chrono::milliseconds{500};
    m_machine.look = [released, looks](const FileURL& volume) {
        if (++*looks > 1) released->wait();
        return readVolumeFacts(volume);
    };
    const auto volumes = makeVolumes();
    // The first look may be too slow for a list, too; it is told once it has ended.
    while (listedURLs(*volumes).empty()) ASSERT_TRUE(runUntilChanges(1));
    EXPECT_EQ(listedURLs(*volumes), std::vector{slow});
    released->count_down();
}

TEST_F(UDisksVolumesTest, nothingArrivesOnceItIsGone) {
    startUDisks();
    plugReader("reader");
    plugBlock("sdb1", "reader", "KELVA_CARD");
    const auto card = mount("sdb1", "card");
    auto released = std::make_shared<std::latch>(1);
    m_machine.look = [released](const FileURL& volume) {
        released->wait();
        return readVolumeFacts(volume);
    };
    const auto fail = [](const auto&) { ADD_FAILURE() << "an answer from the dead"; };
    const auto lasting = makeVolumes();
    auto leaving = makeVolumes();
    leaving->list(fail); // before UDisks has answered
    ASSERT_TRUE(runUntil([&] { return lasting->isSettled() && leaving->isSettled(); }));
    leaving->observe(fail);
    leaving->list(fail);
    leaving->eject(card, fail);
    leaving.reset();
    released->count_down();
    ASSERT_TRUE(runUntilChanges(1)) << "the ejection went on without its owner";
    EXPECT_TRUE(listed(*lasting).empty());
}

TEST_F(UDisksVolumesTest, itMayEndInItsOwnAnswers) {
    startUDisks();
    plugReader("reader");
    plugBlock("sdb1", "reader", "KELVA_CARD");
    const auto card = mount("sdb1", "card");
    auto volumes = makeVolumes();
    volumes->list([&](const auto&) { volumes.reset(); });
    EXPECT_TRUE(runUntil([&] { return volumes == nullptr; }));

    volumes = makeVolumes();
    ASSERT_EQ(listed(*volumes).size(), 1U);
    volumes->eject(FileURL{"/media/none"}, [&](const auto&) { volumes.reset(); });
    EXPECT_TRUE(runUntil([&] { return volumes == nullptr; }));

    volumes = makeVolumes();
    ASSERT_EQ(listed(*volumes).size(), 1U);
    volumes->observe([&](const auto&) { volumes.reset(); });
    volumes->eject(card, [](const auto&) {});
    EXPECT_TRUE(runUntil([&] { return volumes == nullptr; }));

    mount("sdb1", "card");
    volumes = makeVolumes();
    ASSERT_EQ(listed(*volumes).size(), 1U);
    volumes->observe({});
    volumes->eject(card, [&](const auto&) { volumes.reset(); });
    EXPECT_TRUE(runUntil([&] { return volumes == nullptr; }));
}

} // namespace
} // namespace kelvara
