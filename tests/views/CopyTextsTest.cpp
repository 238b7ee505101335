#include "views/CopyTexts.h"

#include <gtest/gtest.h>

#include <limits>

namespace kelvara {

using namespace std::chrono_literals;

TEST(CopyTextsTest, theButtonAsksForAFolderUntilOneIsKnown) {
    const auto unknown = copyButtonTexts(12, {});
    EXPECT_EQ(unknown.title, QString{"Copy 12 marked…  ⌘⏎"});
    EXPECT_EQ(unknown.help, QString{"Choose a folder and copy marked files (⌘Return)"});
    const auto known = copyButtonTexts(3, FileURL{"/photos/100%2 Selects"});
    EXPECT_EQ(known.title, QString{"Copy 3 to 100%2 Selects"});
    EXPECT_EQ(known.help, QString{"Copy marked files to /photos/100%2 Selects"});
}

TEST(CopyTextsTest, durationsLeaveOutZerosAndFractions) {
    EXPECT_EQ(durationText(125s + 900ms), QString{"2 min, 5 sec"});
    EXPECT_EQ(durationText(180s), QString{"3 min"});
    EXPECT_EQ(durationText(59s), QString{"59 sec"});
    EXPECT_EQ(durationText(300ms), QString{"0 sec"});
    EXPECT_EQ(durationText(2h + 1s), QString{"120 min, 1 sec"});
}

TEST(CopyTextsTest, theTimeRemainingWaitsForTwoSecondsAndTheFirstBytes) {
    CopyService::Progress progress;
    progress.totalBytes = 6'121'400'000;
    EXPECT_EQ(timeRemainingText(progress, 10s), QString{});
    progress.completedBytes = 96'400'000;
    EXPECT_EQ(timeRemainingText(progress, 2s), QString{});
    EXPECT_EQ(timeRemainingText(progress, 2s + 1ns), QString{"48.2 MB/s · 2 min, 5 sec left"});
    progress.completedBytes = 1;
    progress.totalBytes = std::numeric_limits<std::int64_t>::max(); // what a broken card claims
    EXPECT_TRUE(timeRemainingText(progress, 10s).endsWith(u"left"));
    progress.completedBytes = progress.totalBytes = 6'121'000'000;
    EXPECT_EQ(timeRemainingText(progress, 10s), QString{"612.1 MB/s · 0 sec left"});
}

TEST(CopyTextsTest, theReportsTitleTellsTheWorstThatHappened) {
    CopyService::Report report;
    EXPECT_EQ(copyReportTitle(report, false), QString{"Copy Complete"});
    report.failures = {{"a.jpg", "Permission denied"}};
    EXPECT_EQ(copyReportTitle(report, false), QString{"Copy Finished with Errors"});
    report.wasCancelled = true;
    EXPECT_EQ(copyReportTitle(report, false), QString{"Copy Cancelled"});
    EXPECT_EQ(copyReportTitle(report, true), QString{"Copy Interrupted"});
}

TEST(CopyTextsTest, theReportCountsOnlyWhatHappened) {
    CopyService::Report report;
    report.copied = 12;
    report.copiedBytes = 340'000'000;
    report.duration = 68s;
    auto rows = copyReportRows(report, CopyKind::copy);
    ASSERT_EQ(rows.size(), 1);
    EXPECT_EQ(rows[0].count + ": " + rows[0].detail, QString{"12 copied: 340 MB in 1 min, 8 sec"});
    EXPECT_EQ(copyReportRows(report, CopyKind::verifiedCopy)[0].detail,
              QString{"340 MB in 1 min, 8 sec · verified"});
    EXPECT_EQ(copyReportRows(report, CopyKind::exported)[0].count, QString{"12 exported"});
    report.skipped = 2;
    report.renamed = 1;
    report.failures = {{"a.jpg", "Permission denied"}};
    rows = copyReportRows(report, CopyKind::copy);
    ASSERT_EQ(rows.size(), 4);
    EXPECT_EQ(rows[1].count + ": " + rows[1].detail,
              QString{"2 already there: skipped (same name and size)"});
    EXPECT_EQ(rows[2].count + ": " + rows[2].detail,
              QString{"1 renamed: a different file had the same name"});
    EXPECT_EQ(rows[3].count, QString{"1 failed"});
}

} // namespace kelvara
