#include "imaging/ImageLoader.h"

#include "async/ThreadPool.h"
#include "support/ManualExecutor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <random>
#include <string>
#include <vector>

namespace kelvara {
namespace {

using Priority = ImageLoader::Priority;

BitmapPtr image() { return Bitmap::create({2, 2}, ColorProfile::sRGB()); }

Task<BitmapPtr> make(BitmapPtr result) { co_return result; }

class ImageLoaderTest : public testing::Test {
protected:
    /// Counts its runs and keeps the token of the last.
    ImageLoader::Work work(BitmapPtr result) {
        return [this, result](std::stop_token stop) {
            ++runs;
            lastStop = stop;
            return make(stop.stop_requested() ? nullptr : result);
        };
    }
    ImageLoader::Done keep(std::vector<BitmapPtr>& results) {
        return [&results](BitmapPtr result) { results.push_back(std::move(result)); };
    }

    ManualExecutor visible, prefetch;
    ImageLoader loader{1000, 0, visible, prefetch};
    std::vector<BitmapPtr> first, second;
    int runs = 0;
    std::stop_token lastStop;
};

TEST_F(ImageLoaderTest, concurrentRequestsShareOneRun) {
    const auto expected = image();
    const auto a = loader.load("k", Priority::visible, work(expected), keep(first));
    const auto b = loader.load("k", Priority::visible, work(image()), keep(second));
    visible.runAll();
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(first, std::vector{expected});
    EXPECT_EQ(second, std::vector{expected});
    const auto c = loader.load("k", Priority::visible, work(image()), keep(first));
    EXPECT_EQ(first.back(), expected) << "cached, so answered at once";
    EXPECT_EQ(runs, 1);
}

TEST_F(ImageLoaderTest, theRunGoesOnWhileOneRequesterIsLeft) {
    auto a = loader.load("k", Priority::visible, work(image()), keep(first));
    auto b = loader.load("k", Priority::visible, work(image()), keep(second));
    a.cancel();
    a.cancel(); // counts once
    visible.runAll();
    EXPECT_TRUE(first.empty());
    ASSERT_EQ(second.size(), 1U);
    EXPECT_TRUE(second.front());
}

/// Suspends until somebody releases the only slot.
Task<BitmapPtr> makeAfter(std::function<void(std::coroutine_handle<>)> suspended, std::stop_token stop,
                          BitmapPtr result) {
    struct Pause {
        std::function<void(std::coroutine_handle<>)>& suspended;
        bool await_ready() const { return false; }
        void await_suspend(std::coroutine_handle<> coroutine) { suspended(coroutine); }
        void await_resume() const {}
    };
    co_await Pause{suspended};
    BitmapPtr made;
    if (!stop.stop_requested()) made = std::move(result);
    co_return made;
}

TEST_F(ImageLoaderTest, theLastCancellationStopsTheRunAndANewRequestStartsAfresh) {
    std::vector<std::coroutine_handle<>> paused;
    const auto slow = [&](std::stop_token stop) {
        lastStop = stop;
        return makeAfter([&](std::coroutine_handle<> coroutine) { paused.push_back(coroutine); }, stop,
                         image());
    };
    auto a = loader.load("k", Priority::visible, slow, keep(first));
    auto b = loader.load("k", Priority::visible, slow, keep(first));
    visible.runAll();
    const auto firstStop = lastStop;
    a.cancel();
    EXPECT_FALSE(firstStop.stop_requested());
    b.cancel();
    EXPECT_TRUE(firstStop.stop_requested());
    // The new run is not confused with the old one, which ends while it goes on.
    auto c = loader.load("k", Priority::visible, slow, keep(second));
    visible.runAll();
    ASSERT_EQ(paused.size(), 2U);
    paused[0].resume();
    EXPECT_TRUE(second.empty());
    EXPECT_EQ(loader.cache().count(), 0U);
    paused[1].resume();
    EXPECT_TRUE(first.empty());
    ASSERT_EQ(second.size(), 1U);
    EXPECT_EQ(loader.cache().find("k"), second.front());
}

TEST_F(ImageLoaderTest, aRunThatNobodyWaitsForAnyMoreIsNotBegun) {
    { const auto a = loader.load("k", Priority::visible, work(image()), keep(first)); }
    visible.runAll();
    EXPECT_EQ(runs, 0);
}

TEST_F(ImageLoaderTest, nothingIsDeliveredButNotCached) {
    const auto a = loader.load("k", Priority::visible, work(nullptr), keep(first));
    visible.runAll();
    ASSERT_EQ(first.size(), 1U);
    EXPECT_FALSE(first.front());
    const auto b = loader.load("k", Priority::visible, work(image()), keep(second));
    visible.runAll();
    EXPECT_EQ(runs, 2);
    EXPECT_TRUE(second.front());
}

TEST_F(ImageLoaderTest, aVisibleRequestTakesAQueuedPrefetchOver) {
    loader.prefetch("k", work(image()));
    {
        const auto a = loader.load("k", Priority::visible, work(image()), keep(first));
        visible.runAll();
        EXPECT_EQ(first.size(), 1U) << "without a turn of the prefetching executor";
    }
    prefetch.runAll();
    EXPECT_EQ(runs, 1);
}

TEST_F(ImageLoaderTest, aPrefetchOutlivesRequestersThatJoinedIt) {
    loader.prefetch("k", work(image()));
    loader.load("k", Priority::visible, work(image()), keep(first)).cancel();
    prefetch.runAll();
    EXPECT_TRUE(loader.cache().contains("k"));
}

TEST_F(ImageLoaderTest, whatIsBeingMadeWhenAllIsForgottenIsDeliveredButNotKept) {
    const auto a = loader.load("k", Priority::visible, work(image()), keep(first));
    loader.forgetAll();
    const auto b = loader.load("k", Priority::visible, work(image()), keep(second));
    visible.runOne();
    EXPECT_EQ(first.size(), 1U);
    EXPECT_FALSE(loader.cache().contains("k"));
    visible.runAll();
    EXPECT_EQ(loader.cache().find("k"), second.front());
}

TEST(ImageLoaderLifeTest, itsEndCancelsAndSilencesAllRuns) {
    ManualExecutor executor;
    bool isAnswered = false;
    ImageLoader::Request request;
    {
        ImageLoader loader{1000, 0, executor, executor};
        request = loader.load(
            "k", Priority::visible, [](std::stop_token) { return make(image()); },
            [&](const BitmapPtr&) { isAnswered = true; });
    }
    executor.runAll();
    EXPECT_FALSE(isAnswered);
    request.cancel(); // of a loader that is gone
}

TEST(ImageLoaderStressTest, requestersComeAndGoOnManyThreads) {
    constexpr int requests = 4000;
    std::atomic<int> running = 0, answers = 0;
    std::latch issued{requests};
    ThreadPool decoding{3};
    ThreadPool views{3};
    ImageLoader loader{200, 0, decoding, decoding};
    std::mt19937 random{11};
    for (int i = 0; i < requests; ++i) {
        const auto dice = random();
        views.post([&, dice] {
            const auto key = std::to_string(dice % 20);
            const auto work = [&](std::stop_token stop) {
                ++running;
                return make(stop.stop_requested() ? nullptr : image());
            };
            auto request = loader.load(key, dice % 3 == 0 ? Priority::prefetch : Priority::visible, work,
                                       [&](const BitmapPtr&) { ++answers; });
            if (dice % 7 == 0) loader.prefetch(key, work);
            if (dice % 101 == 0) loader.forgetAll();
            if (dice % 2 == 0) request.cancel();
            issued.count_down();
        });
    }
    issued.wait();
    EXPECT_LE(answers, requests);
    EXPECT_LE(loader.cache().totalCost(), 200U);
    // Whatever was going on, a request that stays is answered.
    std::latch last{1};
    const auto request = loader.load(
        "last", Priority::visible, [](std::stop_token) { return make(image()); },
        [&](const BitmapPtr& result) {
            EXPECT_TRUE(result);
            last.count_down();
        });
    last.wait();
}

} // namespace
} // namespace kelvara
