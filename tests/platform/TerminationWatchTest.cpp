#include "platform/linux/TerminationWatch.h"

#include "platform/EventLoop.h"

#include <csignal>
#include <gtest/gtest.h>

namespace kelvara {

TEST(TerminationWatchTest, theFirstSignalIsACallAndTheNextOneEndsTheProgram) {
    int calls = 0;
    const auto askTwice = [&] {
        TerminationWatch watch{[&] { ++calls; }};
        ::raise(SIGTERM);
        if (!runUntil([&] { return calls == 1; })) std::exit(1);
        ::raise(SIGTERM);
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(askTwice(), testing::KilledBySignal(SIGTERM), "");
}

TEST(TerminationWatchTest, anIgnoredSignalStaysIgnored) {
    ::signal(SIGHUP, SIG_IGN);
    {
        const TerminationWatch watch{[] {}};
        EXPECT_EQ(::signal(SIGHUP, SIG_IGN), SIG_IGN);
    }
    ::signal(SIGHUP, SIG_DFL);
}

} // namespace kelvara
