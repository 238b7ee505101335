#include "services/CopyTest.h"

#include <atomic>
#include <latch>
#include <mutex>
#include <set>
#include <sys/stat.h>
#include <thread>

namespace kelvara {
namespace {

using Strings = std::vector<std::string>;

class CopyRunTest : public CopyTest {
protected:
    /// The reason why the only file of a job failed.
    std::string failureOf(const std::vector<Plan>& plans) const {
        const auto report = copy(plans);
        EXPECT_EQ(report.copied, 0);
        EXPECT_EQ(report.failures.size(), 1U);
        return report.failures.empty() ? std::string{} : report.failures[0].reason;
    }
    std::vector<PhotoItem> photos(int count) {
        std::vector<PhotoItem> items;
        for (int i = 0; i < count; ++i) items.push_back(photo(std::to_string(i) + ".JPG", std::to_string(i)));
        return items;
    }
};

TEST_F(CopyRunTest, copiesFilesAndTellsOfEachOnTheCallingThread) {
    const auto plans = planned({photo("a.NEF", "first"), photo("sub/b.JPG", ""), photo("c.MOV", "third!")});
    std::vector<CopyService::Progress> seen;
    const auto report = service.copy(plans, target.url(), {}, {},
                                     [&, caller = std::this_thread::get_id()](const auto& progress) {
                                         EXPECT_EQ(std::this_thread::get_id(), caller);
                                         seen.push_back(progress);
                                     });
    EXPECT_EQ(target.files(), (Strings{"a.NEF", "b.JPG", "c.MOV"}));
    EXPECT_EQ(TemporaryFolder::read(target.at("a.NEF")), "first");
    EXPECT_EQ(TemporaryFolder::read(target.at("c.MOV")), "third!");
    EXPECT_EQ(report.destination, target.url());
    EXPECT_EQ(report.copied, 3);
    EXPECT_EQ(report.copiedBytes, 11);
    EXPECT_EQ(report.renamed, 0);
    EXPECT_FALSE(report.wasCancelled);

    ASSERT_EQ(seen.size(), 4U);
    EXPECT_EQ(seen[0], (CopyService::Progress{0, 3, 0, 11, {}}));
    for (std::size_t i = 1; i < seen.size(); ++i) {
        EXPECT_EQ(seen[i].completedFiles, static_cast<std::int64_t>(i));
        EXPECT_FALSE(seen[i].currentFile.empty());
    }
    EXPECT_EQ(seen[3].completedBytes, 11);
}

TEST_F(CopyRunTest, nothingToDoIsAnEmptyReport) {
    const auto report = copy({});
    EXPECT_EQ(report.copied + report.skipped, 0);
    EXPECT_FALSE(report.wasCancelled);
}

TEST_F(CopyRunTest, aSecondRunSkipsEverythingAndTouchesNothing) {
    target.write("1.JPG", "a different photo");
    auto items = photos(10);
    const auto first = copy(planned(items));
    EXPECT_EQ(first.copied, 10);
    EXPECT_EQ(first.renamed, 1);
    struct stat before {};
    ::stat(target.at("5.JPG").path().c_str(), &before);

    const auto second = copy(planned(items));
    EXPECT_EQ(second.copied, 0);
    EXPECT_EQ(second.skipped, 10);
    EXPECT_EQ(second.renamed, 0);
    EXPECT_EQ(target.files().size(), 11U);
    struct stat after {};
    ::stat(target.at("5.JPG").path().c_str(), &after);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_ctim.tv_nsec, before.st_ctim.tv_nsec);
}

TEST_F(CopyRunTest, aRestOfAnInterruptedCopyIsReplaced) {
    target.write("a.NEF.partial", "rest of an earlier run");
    EXPECT_EQ(copy(planned({photo("a.NEF", "whole")})).copied, 1);
    EXPECT_EQ(target.files(), Strings{"a.NEF"});
    EXPECT_EQ(TemporaryFolder::read(target.at("a.NEF")), "whole");
}

TEST_F(CopyRunTest, aFileThatAppearsAfterPlanningIsNeverReplaced) {
    const auto plans = planned({photo("a.NEF", "mine")});
    files.onPlace = [this](const FileURL&, const FileURL&) { target.write("a.NEF", "theirs"); };
    EXPECT_EQ(failureOf(plans), "Another file of this name appeared at the destination.");
    EXPECT_EQ(target.files(), Strings{"a.NEF"});
    EXPECT_EQ(TemporaryFolder::read(target.at("a.NEF")), "theirs");
}

TEST_F(CopyRunTest, aPulledCardAndAPulledDriveAreToldApart) {
    const auto plans = planned({photo("a.NEF", "x")});
    std::filesystem::remove(card.at("a.NEF").path());
    EXPECT_EQ(failureOf(plans), "The original is gone. Was the card removed?");
    card.write("a.NEF", "x");
    std::filesystem::remove_all(target.url().path());
    EXPECT_EQ(failureOf(plans), "The destination folder is gone. Was its drive removed?");
}

TEST_F(CopyRunTest, aCopyOfTheWrongSizeLeavesNothing) {
    const auto plans = planned({photo("a.NEF", "12345")});
    card.write("a.NEF", "grew while it was copied");
    EXPECT_EQ(failureOf(plans), "The copy's size doesn't match the original.");
    card.write("a.NEF", "12345");
    files.onSize = [](std::int64_t size) { return size - 1; };
    EXPECT_EQ(failureOf(plans), "The copy's size doesn't match the original.");
    EXPECT_EQ(target.files(), Strings{});
}

TEST_F(CopyRunTest, aVerifiedCopyIsWhatTheMediumHoldsOrNothing) {
    auto request = this->request({photo("a.NEF", "12345"), photo("b.NEF", std::string(5'000'000, 'x'))});
    request.verifies = true;
    for (const auto* damaged : {"a.NEF.partial", "b.NEF.partial", ""}) {
        files.onSync = [&](const FileURL& temporary) -> std::optional<std::errc> {
            if (temporary.name() == damaged) std::fstream{temporary.path()}.seekp(3).put('!');
            return std::nullopt;
        };
        TemporaryFolder place;
        request.destination = place.url();
        const auto report = service.copy(service.plan(request).value(), place.url(), {}, {}, [](auto&) {});
        const bool isWhole = std::string_view{damaged}.empty();
        EXPECT_EQ(report.copied, isWhole ? 2 : 1);
        EXPECT_EQ(place.files().size(), isWhole ? 2U : 1U);
        if (isWhole) continue;
        ASSERT_EQ(report.failures.size(), 1U);
        EXPECT_EQ(report.failures[0].fileName + ".partial", damaged);
        EXPECT_EQ(report.failures[0].reason, "The copy's contents don't match the original.");
    }
}

TEST_F(CopyRunTest, aCopyCountsOnlyWhenItsBytesAndItsNameAreOnTheMedium) {
    const auto items = photos(40);
    files.onSync = [](const FileURL& temporary) -> std::optional<std::errc> {
        if (temporary.name() == "7.JPG.partial") return std::errc::io_error;
        return std::nullopt;
    };
    std::atomic<bool> namesAreSafe = false;
    files.onPlace = [&](const FileURL&, const FileURL&) { namesAreSafe = false; };
    files.onSyncNames = [&](const FileURL& folder) -> std::optional<std::errc> {
        EXPECT_EQ(folder, target.url());
        namesAreSafe = true;
        return std::nullopt;
    };
    auto report = copy(planned(items));
    EXPECT_TRUE(namesAreSafe);
    EXPECT_EQ(report.copied, 39);
    ASSERT_EQ(report.failures.size(), 1U);
    EXPECT_EQ(report.failures[0].fileName, "7.JPG");
    EXPECT_EQ(target.files().size(), 39U);

    files.onSyncNames = [](const FileURL&) { return std::optional{std::errc::no_such_device}; };
    EXPECT_EQ(failureOf(planned({photo("x.NEF", "x")})),
              "The destination folder is gone. Was its drive removed?");
}

TEST_F(CopyRunTest, twoCopiesIntoOneFolderAtOnceDoNotTearEachOther) {
    const auto plans = planned(photos(200));
    CopyService::Report reports[2];
    {
        std::vector<std::jthread> threads;
        for (auto& report : reports) threads.emplace_back([&] { report = copy(plans); });
    }
    EXPECT_EQ(reports[0].copied + reports[1].copied, 200);
    EXPECT_EQ(reports[0].failures.size() + reports[1].failures.size(), 200U);
    EXPECT_EQ(target.files().size(), 200U);
    for (int i = 0; i < 200; ++i) {
        EXPECT_EQ(TemporaryFolder::read(target.at(std::to_string(i) + ".JPG")), std::to_string(i));
    }
    for (const auto& report : reports) {
        for (const auto& failure : report.failures) {
            EXPECT_TRUE(failure.reason == "Another file of this name appeared at the destination." ||
                        failure.reason == "Another copy of this file is being written at the destination.")
                << failure.reason;
        }
    }
}

TEST_F(CopyRunTest, aFailedFileIsCleanedUpAndTheOthersGoOn) {
    files.onCopy = [](const FileURL& from, const FileURL&) -> std::optional<std::errc> {
        if (from.name() == "3.JPG") return std::errc::io_error;
        if (from.name() == "4.JPG") return std::errc::no_space_on_device;
        return std::nullopt;
    };
    auto report = copy(planned(photos(8)));
    EXPECT_EQ(report.copied, 6);
    ASSERT_EQ(report.failures.size(), 2U);
    std::sort(report.failures.begin(), report.failures.end(),
              [](const auto& a, const auto& b) { return a.fileName < b.fileName; });
    EXPECT_EQ(report.failures[0],
              (CopyService::Report::Failure{"3.JPG", "Input/output error", card.at("3.JPG")}));
    EXPECT_EQ(report.failures[1],
              (CopyService::Report::Failure{"4.JPG", "No space left on device", card.at("4.JPG")}));
    EXPECT_EQ(target.files(), (Strings{"0.JPG", "1.JPG", "2.JPG", "5.JPG", "6.JPG", "7.JPG"}));
}

TEST_F(CopyRunTest, aProcessThatMayOpenNoMoreFilesNamesThoseItHolds) {
    std::vector<PhotoItem> items;
    for (int i = 0; i < 60; ++i) {
        items.push_back(photo(std::to_string(i) + ".NEF", "x"));
        card.write(std::to_string(i) + ".xmp", "stars");
    }
    std::mutex mutex;
    std::set<FileURL> refused; // every tenth file, once
    files.onCopy = [&](const FileURL& from, const FileURL&) -> std::optional<std::errc> {
        const std::scoped_lock lock{mutex};
        if (!from.stem().ends_with('7') || !refused.insert(from).second) return std::nullopt;
        return std::errc::too_many_files_open;
    };
    const auto report = copy(planned(items));
    EXPECT_EQ(refused.size(), 12U);
    EXPECT_EQ(report.copied, 60);
    EXPECT_EQ(target.files().size(), 120U);
}

TEST_F(CopyRunTest, copiesThreeFilesAtOnceAndNeverMore) {
    std::latch three{3}; // the first three wait for one another
    std::atomic<int> inside = 0;
    std::atomic<int> most = 0;
    std::atomic<int> begun = 0;
    files.onCopy = [&](const FileURL&, const FileURL&) -> std::optional<std::errc> {
        const int now = ++inside;
        for (int seen = most; now > seen && !most.compare_exchange_weak(seen, now);) {
        }
        if (++begun <= 3) three.arrive_and_wait();
        --inside;
        return std::nullopt;
    };
    EXPECT_EQ(copy(planned(photos(30))).copied, 30);
    EXPECT_EQ(most, 3);
}

TEST_F(CopyRunTest, aCancelledJobFinishesTheFilesInProgressAndBeginsNoOther) {
    std::stop_source stop;
    std::latch three{3};
    std::atomic<int> begun = 0;
    files.onCopy = [&](const FileURL&, const FileURL&) -> std::optional<std::errc> {
        if (++begun <= 3) three.arrive_and_wait();
        stop.request_stop();
        return std::nullopt;
    };
    const auto report = copy(planned(photos(100)), {}, stop.get_token());
    EXPECT_EQ(report.copied, 3);
    EXPECT_TRUE(report.failures.empty());
    EXPECT_TRUE(report.wasCancelled);
    EXPECT_EQ(target.files().size(), 3U);
}

TEST_F(CopyRunTest, cancellingAfterTheLastFileBeganCancelsNothing) {
    std::stop_source stop;
    std::latch all{3};
    files.onCopy = [&](const FileURL&, const FileURL&) -> std::optional<std::errc> {
        all.arrive_and_wait();
        stop.request_stop();
        return std::nullopt;
    };
    const auto report = copy(planned(photos(3)), {}, stop.get_token());
    EXPECT_EQ(report.copied, 3);
    EXPECT_FALSE(report.wasCancelled);
}

TEST_F(CopyRunTest, copiesNamesOfAnyLengthAndEncoding) {
    const std::string longest(251, 'n');
    auto items = std::vector{photo("1/" + longest + ".NEF", "1"), photo("2/" + longest + ".NEF", "22"),
                             photo("caf\xE9.NEF", "3")};
    card.write("1/" + longest + ".xmp", "stars");
    const auto report = copy(planned(items));
    EXPECT_EQ(report.copied, 3);
    EXPECT_EQ(report.renamed, 1);
    EXPECT_EQ(target.files(),
              (Strings{"caf\xE9.NEF", longest.substr(2) + "-1.NEF", longest + ".NEF", longest + ".xmp"}));
}

TEST_F(CopyRunTest, sidecarsTravelWithRawFilesOnly) {
    card.write("a.xmp", "a's stars");
    card.write("b.xmp", "b's stars");
    card.write("c.xmp", "c's stars");
    target.write("b.xmp", "edited at home");
    const auto items = std::vector{photo("a.NEF", "1"), photo("b.NEF", "2"), photo("c.JPG", "3")};
    EXPECT_EQ(copy(planned(items)).copied, 3);
    EXPECT_EQ(target.files(), (Strings{"a.NEF", "a.xmp", "b.NEF", "b.xmp", "c.JPG"}));
    EXPECT_EQ(TemporaryFolder::read(target.at("a.xmp")), "a's stars");
    EXPECT_EQ(TemporaryFolder::read(target.at("b.xmp")), "edited at home");

    // A later run supplies a sidecar that is missing, though the photo itself is skipped.
    std::filesystem::remove(target.at("a.xmp").path());
    EXPECT_EQ(copy(planned(items)).skipped, 3);
    EXPECT_EQ(TemporaryFolder::read(target.at("a.xmp")), "a's stars");
}

TEST_F(CopyRunTest, twoRawFilesOfOneShotShareTheirSidecarWithoutQuarrel) {
    card.write("a.xmp", "stars");
    files.onPlace = [&](const FileURL&, const FileURL& to) {
        if (to.extension() == "xmp")
            target.write("a.xmp", "stars"); // both have found none at the destination
    };
    const auto report = copy(planned({photo("a.NEF", "1"), photo("a.DNG", "22")}));
    EXPECT_EQ(report.copied, 2);
    EXPECT_EQ(target.files(), (Strings{"a.DNG", "a.NEF", "a.xmp"}));
}

TEST_F(CopyRunTest, ratingsOfTheSessionBecomeSidecarsOfRawFilesThatHaveNone) {
    card.write("b.xmp", "written beside the photo");
    const auto items = std::vector{photo("a.NEF", "1"), photo("b.NEF", "2"), photo("c.JPG", "3"),
                                   photo("d.NEF", "4"), photo("e.NEF", "5")};
    target.write("e.xmp", "edited at home");
    CopyService::Ratings ratings;
    for (const auto& item : items) ratings[item.url] = *Rating::fromRawValue(4);
    ratings[items[3].url] = Rating{};
    EXPECT_EQ(copy(planned(items), ratings).copied, 5);
    EXPECT_EQ(target.files(),
              (Strings{"a.NEF", "a.xmp", "b.NEF", "b.xmp", "c.JPG", "d.NEF", "e.NEF", "e.xmp"}));
    EXPECT_EQ(TemporaryFolder::read(target.at("a.xmp")), "4");
    EXPECT_EQ(TemporaryFolder::read(target.at("b.xmp")), "written beside the photo");
    EXPECT_EQ(TemporaryFolder::read(target.at("e.xmp")), "edited at home");
}

TEST_F(CopyRunTest, aSidecarThatCannotBeCarriedIsAFailureOfACompletePhoto) {
    card.write("a.xmp", "stars");
    files.onCopy = [](const FileURL& from, const FileURL&) -> std::optional<std::errc> {
        if (from.extension() == "xmp") return std::errc::io_error;
        return std::nullopt;
    };
    EXPECT_EQ(failureOf(planned({photo("a.NEF", "1")})),
              "The rating sidecar couldn't be copied: Input/output error.");
    EXPECT_EQ(target.files(), Strings{"a.NEF"});

    const CopyService unable{files, [](const FileURL&, Rating) -> Result<void, std::string> {
                                 return Failure{std::string{"The disk is write-protected."}};
                             }};
    const auto item = photo("b.NEF", "2");
    const auto report =
        unable.copy(planned({item}), target.url(), {{item.url, *Rating::fromRawValue(1)}}, {}, [](auto&) {});
    ASSERT_EQ(report.failures.size(), 1U);
    EXPECT_EQ(report.failures[0].reason, "The disk is write-protected.");
}

} // namespace
} // namespace kelvara
