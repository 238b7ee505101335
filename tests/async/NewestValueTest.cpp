#include "async/NewestValue.h"

#include "async/ThreadPool.h"
#include "support/ManualExecutor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace kelvara {

TEST(NewestValueTest, whatIsReplacedOnTheWayIsNeverDelivered) {
    ManualExecutor receiver;
    std::vector<int> delivered;
    const NewestValue<int> values{receiver, [&](int value) { delivered.push_back(value); }};
    for (int i = 1; i <= 20'000; ++i) values.send(i);
    EXPECT_EQ(receiver.pending(), 1U);
    receiver.runAll();
    values.send(7);
    receiver.runAll();
    EXPECT_EQ(delivered, (std::vector<int>{20'000, 7}));
}

TEST(NewestValueTest, theLastValueArrivesLastWhileTheReceiverIsBusyTakingOthers) {
    std::vector<int> delivered;
    {
        ThreadPool receiver{1, ThreadPool::AtEnd::finish};
        const NewestValue<int> values{receiver, [&](int value) { delivered.push_back(value); }};
        for (int i = 1; i <= 20'000; ++i) values.send(i);
    }
    ASSERT_FALSE(delivered.empty());
    EXPECT_TRUE(std::is_sorted(delivered.begin(), delivered.end()));
    EXPECT_EQ(delivered.back(), 20'000);
}

} // namespace kelvara
