#include "platform/linux/QtMainExecutor.h"

#include "platform/EventLoop.h"

#include <QCoreApplication>
#include <QThread>
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

namespace kelvara {
namespace {

TEST(QtMainExecutorTest, runsJobsOfAnotherThreadOnTheMainThreadInOrder) {
    QtMainExecutor main;
    std::vector<int> seen;
    bool wasElsewhere = false;
    const auto* mainThread = QThread::currentThread();
    std::jthread poster{[&] {
        for (int i = 0; i < 1000; ++i) {
            main.post([&, i] {
                wasElsewhere |= QThread::currentThread() != mainThread;
                seen.push_back(i);
            });
        }
    }};
    ASSERT_TRUE(runUntil([&] { return seen.size() == 1000; }));
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_FALSE(wasElsewhere);
}

TEST(QtMainExecutorTest, aNestedEventLoopRunsTheJobsBehindIt) {
    QtMainExecutor main;
    bool ranInside = false;
    bool isDone = false;
    main.post([&] { isDone = runUntil([&] { return ranInside; }); });
    main.post([&] { ranInside = true; });
    EXPECT_TRUE(runUntil([&] { return isDone; }));
}

TEST(QtMainExecutorTest, itsEndDropsWhatHasNotBegun) {
    const auto owned = std::make_shared<int>(1);
    bool ran = false;
    {
        QtMainExecutor main;
        main.post([&ran, owned] { ran = true; });
    }
    QCoreApplication::processEvents();
    EXPECT_FALSE(ran);
    EXPECT_EQ(owned.use_count(), 1);
}

} // namespace
} // namespace kelvara
