// Runs against the machine's own UDisks; real-udisks-check.sh sets it up and says where the card is.

#include "platform/linux/UDisksVolumes.h"

#include "platform/EventLoop.h"

#include <QProcess>
#include <algorithm>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <iostream>

namespace kelvara {
namespace {

std::vector<VolumeInfo> listed(Volumes& volumes) {
    std::optional<std::vector<VolumeInfo>> answer;
    volumes.list([&](std::vector<VolumeInfo> infos) { answer = std::move(infos); });
    EXPECT_TRUE(runUntil([&] { return answer.has_value(); }));
    return answer.value_or(std::vector<VolumeInfo>{});
}

std::string ejected(Volumes& volumes, const FileURL& volume) {
    std::optional<std::string> answer;
    volumes.eject(volume, [&](const Result<void, std::string>& result) {
        answer = result ? std::string{} : result.error();
    });
    EXPECT_TRUE(runUntil([&] { return answer.has_value(); }));
    return answer.value_or("no answer");
}

/// Notes what is told about the card alone: other mounts of the machine may change meanwhile.
class CardWatch {
public:
    explicit CardWatch(Volumes& volumes) {
        volumes.observe([this](const VolumeChange& change) {
            if (change.url.name().starts_with("KELVA_CARD")) changes.push_back(change);
        });
    }
    std::vector<VolumeChange> changes;
};

TEST(RealDisksTest, aCardIsMountedListedBusyAndEjected) {
    const auto mounting = qEnvironmentVariable("KELVARA_TEST_MOUNT");
    if (mounting.isEmpty()) GTEST_SKIP() << "KELVARA_TEST_MOUNT mounts no card; see real-udisks-check.sh";

    UDisksVolumes byUDisks{QDBusConnection::systemBus()};
    UDisksVolumes byTable{QDBusConnection{QStringLiteral("none")}};
    CardWatch toldByUDisks{byUDisks};
    CardWatch toldByTable{byTable};
    (void)listed(byUDisks);
    (void)listed(byTable);

    QProcess mount;
    mount.startCommand(mounting);
    ASSERT_TRUE(mount.waitForFinished());
    ASSERT_EQ(mount.exitCode(), 0) << mount.readAllStandardError().toStdString();
    ASSERT_TRUE(runUntil([&] { return !toldByUDisks.changes.empty() && !toldByTable.changes.empty(); }));
    const auto card = toldByUDisks.changes[0].url;
    EXPECT_EQ(toldByTable.changes[0].url, card);
    EXPECT_FALSE(toldByUDisks.changes[0].didUnmount);

    for (auto* volumes : {&byUDisks, &byTable}) {
        const auto infos = listed(*volumes);
        const auto found = std::find_if(infos.begin(), infos.end(),
                                        [&](const VolumeInfo& info) { return info.url == card; });
        ASSERT_NE(found, infos.end());
        EXPECT_EQ(found->name, "KELVA_CARD");
        EXPECT_EQ(found->preferredSourceURL, card.child("DCIM"));
        EXPECT_GT(found->totalCapacity.value_or(0), found->availableCapacity.value_or(0));
    }

    {
        const FileDescriptor inUse{::open(card.child("DCIM").path().c_str(), O_RDONLY | O_CLOEXEC)};
        ASSERT_TRUE(inUse.isOpen());
        const auto sentence = ejected(byUDisks, card);
        EXPECT_EQ(sentence.find("“KELVA_CARD” is in use by another program ("), 0U) << sentence;
        std::cout << sentence << '\n';
    }
    EXPECT_EQ(ejected(byUDisks, card), "");
    ASSERT_TRUE(runUntil([&] { return toldByUDisks.changes.size() > 1 && toldByTable.changes.size() > 1; }));
    EXPECT_TRUE(toldByUDisks.changes[1].didUnmount);
    EXPECT_TRUE(toldByTable.changes[1].didUnmount);
}

} // namespace
} // namespace kelvara
