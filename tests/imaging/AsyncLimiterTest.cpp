#include "imaging/AsyncLimiter.h"

#include "async/ThreadPool.h"
#include "support/ManualExecutor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace kelvara {
namespace {

using Priority = AsyncLimiter::Priority;

Task<bool> waitFor(AsyncLimiter& limiter, Priority priority, std::stop_token stop, Executor& executor) {
    const bool isGranted = co_await limiter.acquire(priority, std::move(stop), executor);
    co_return isGranted;
}

class AsyncLimiterTest : public testing::Test {
protected:
    void ask(char name, Priority priority, std::stop_token stop = {}) {
        start(waitFor(limiter, priority, std::move(stop), executor),
              [this, name](bool isGranted) { (isGranted ? admitted : refused) += name; });
    }
    void release() {
        limiter.release();
        executor.runAll();
    }

    ManualExecutor executor;
    AsyncLimiter limiter{2};
    std::string admitted, refused;
};

TEST_F(AsyncLimiterTest, admitsUpToItsLimitAtOnceAndQueuesTheRest) {
    ask('1', Priority::low);
    ask('2', Priority::high);
    EXPECT_EQ(admitted, "12");
    EXPECT_EQ(executor.pending(), 0U);
    ask('3', Priority::high);
    EXPECT_EQ(admitted, "12");
    EXPECT_EQ(limiter.runningCount(), 2);
    EXPECT_EQ(limiter.waitingCount(), 1U);
    release();
    EXPECT_EQ(admitted, "123");
    EXPECT_EQ(limiter.runningCount(), 2) << "the slot is passed on";
    release();
    EXPECT_EQ(limiter.runningCount(), 1);
    ask('4', Priority::low);
    EXPECT_EQ(admitted, "1234");
}

TEST_F(AsyncLimiterTest, admitsHighBeforeLowAndOldBeforeYoung) {
    ask('1', Priority::high);
    ask('2', Priority::high);
    ask('A', Priority::low);
    ask('B', Priority::low);
    ask('C', Priority::high);
    ask('D', Priority::high);
    for (int i = 0; i < 4; ++i) release();
    EXPECT_EQ(admitted, "12CDAB");
}

TEST_F(AsyncLimiterTest, aCancelledWaiterLeavesTheOthersInTheirOrder) {
    ask('1', Priority::high);
    ask('2', Priority::high);
    std::stop_source stop;
    ask('A', Priority::low);
    ask('B', Priority::low, stop.get_token());
    ask('C', Priority::low);
    stop.request_stop();
    executor.runAll();
    EXPECT_EQ(refused, "B");
    EXPECT_EQ(limiter.runningCount(), 2);
    EXPECT_EQ(limiter.waitingCount(), 2U);
    release();
    release();
    EXPECT_EQ(admitted, "12AC");
}

TEST_F(AsyncLimiterTest, aStopAfterAdmissionChangesNothing) {
    std::stop_source stop;
    ask('1', Priority::high, stop.get_token());
    ask('2', Priority::high);
    ask('3', Priority::high, stop.get_token());
    limiter.release(); // 3 has the slot, but has not gone on yet
    stop.request_stop();
    executor.runAll();
    EXPECT_EQ(admitted, "123");
    EXPECT_EQ(refused, "");
    EXPECT_EQ(limiter.runningCount(), 2);
}

TEST_F(AsyncLimiterTest, whoIsStoppedBeforehandIsQueuedNowhere) {
    std::stop_source stop;
    stop.request_stop();
    ask('1', Priority::high, stop.get_token());
    EXPECT_EQ(admitted, "1") << "a free slot is granted all the same";
    ask('2', Priority::high);
    ask('3', Priority::high, stop.get_token());
    EXPECT_EQ(refused, "3");
    EXPECT_EQ(limiter.waitingCount(), 0U);
}

TEST(AsyncLimiterDeathTest, anUnbalancedReleaseEndsTheProgram) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(AsyncLimiter{2}.release(), "");
}

struct Crowd {
    AsyncLimiter limiter{2};
    std::atomic<int> inside = 0, mostInside = 0, admitted = 0, refused = 0;
};

Task<bool> visit(Crowd& crowd, Priority priority, std::stop_token stop, Executor& executor) {
    const bool isGranted = co_await crowd.limiter.acquire(priority, std::move(stop), executor);
    if (!isGranted) co_return false;
    const int now = ++crowd.inside;
    for (int seen = crowd.mostInside; now > seen && !crowd.mostInside.compare_exchange_weak(seen, now);) {
    }
    --crowd.inside;
    crowd.limiter.release();
    co_return true;
}

TEST(AsyncLimiterStressTest, everyWaiterIsAnsweredOnceWhileOthersCancel) {
    constexpr int visits = 3000;
    constexpr unsigned threads = 4;
    Crowd crowd;
    std::vector<std::stop_source> stops(visits);
    std::latch answered{visits};
    ThreadPool pool{threads};
    ThreadPool cancelling{2};
    std::mt19937 random{7};
    for (int i = 0; i < visits; ++i) {
        const auto priority = random() % 2 == 0 ? Priority::high : Priority::low;
        auto& stop = stops[static_cast<std::size_t>(i)];
        pool.post([&, priority, token = stop.get_token()] {
            start(visit(crowd, priority, token, pool), [&](bool isGranted) {
                ++(isGranted ? crowd.admitted : crowd.refused);
                answered.count_down();
            });
        });
        if (random() % 2 == 0) cancelling.post([&stop] { stop.request_stop(); });
    }
    answered.wait();
    EXPECT_EQ(crowd.admitted + crowd.refused, visits);
    EXPECT_LE(crowd.mostInside, 2);
    EXPECT_EQ(crowd.limiter.runningCount(), 0);
    EXPECT_EQ(crowd.limiter.waitingCount(), 0U);
}

} // namespace
} // namespace kelvara
