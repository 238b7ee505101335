#include "async/PriorityLanes.h"

#include "async/ThreadPool.h"
#include "support/ManualExecutor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <string>

namespace kelvara {
namespace {

TEST(PriorityLanesTest, urgentJobsOvertakeThoseInTheBackground) {
    ManualExecutor executor;
    PriorityLanes lanes{executor, 1};
    std::string order;
    lanes.background().post([&] { order += 'a'; });
    lanes.background().post([&] { order += 'b'; });
    lanes.urgent().post([&] { order += 'X'; });
    lanes.urgent().post([&] { order += 'Y'; });
    executor.runAll();
    EXPECT_EQ(order, "XYab");
}

TEST(PriorityLanesTest, aRunningBackgroundJobHoldsUpItsLikeButNoUrgentJob) {
    ManualExecutor executor;
    PriorityLanes lanes{executor, 1};
    std::string order;
    lanes.background().post([&] {
        lanes.background().post([&] { order += 'b'; });
        lanes.urgent().post([&] { order += 'X'; });
        executor.runAll(); // what the other threads do meanwhile
        EXPECT_EQ(order, "X");
        order += 'a';
    });
    executor.runOne();
    EXPECT_EQ(order, "Xab") << "the job that had to wait is taken up by the one that ended";
    EXPECT_EQ(executor.pending(), 0U);
}

TEST(PriorityLanesTest, manyThreadsRunEveryJobOnce) {
    constexpr int jobs = 4000;
    std::atomic<int> background = 0, mostBackground = 0;
    std::latch done{jobs};
    ThreadPool pool{4};
    PriorityLanes lanes{pool, 2};
    for (int i = 0; i < jobs; ++i) {
        if (i % 3 == 0) {
            lanes.urgent().post([&] { done.count_down(); });
            continue;
        }
        lanes.background().post([&] {
            const int now = ++background;
            for (int seen = mostBackground; now > seen && !mostBackground.compare_exchange_weak(seen, now);) {
            }
            --background;
            done.count_down();
        });
    }
    done.wait();
    EXPECT_LE(mostBackground, 2);
}

} // namespace
} // namespace kelvara
