#include "async/ThreadPool.h"

#include <atomic>
#include <gtest/gtest.h>
#include <latch>

namespace kelvara {
namespace {

TEST(ThreadPoolTest, oneThreadRunsJobsInTheirOrder) {
    std::vector<int> order;
    {
        ThreadPool pool{1, ThreadPool::AtEnd::finish};
        for (int i = 0; i < 100; ++i) pool.post([&order, i] { order.push_back(i); });
    }
    ASSERT_EQ(order.size(), 100U) << "what was promised is finished";
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(ThreadPoolTest, theEndWaitsForWhatRunsAndDropsTheRest) {
    std::latch hasBegun{1};
    std::latch mayGoOn{1};
    std::atomic<int> finished = 0;
    ThreadPool pool{1};
    pool.post([&] {
        hasBegun.count_down();
        mayGoOn.wait();
        ++finished;
    });
    pool.post([&] { finished += 100; });
    hasBegun.wait();
    std::jthread release{[&] { mayGoOn.count_down(); }};
    pool.end();
    EXPECT_EQ(finished % 100, 1);
    pool.post([&] { finished += 1000; });
    pool.end();
    EXPECT_LT(finished, 1000) << "an ended pool takes no jobs, and may be ended again";
}

} // namespace
} // namespace kelvara
