#include "async/Task.h"

#include "support/ManualExecutor.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace kelvara {
namespace {

/// Awaited, goes on from an executor.
struct Hop {
    Executor& executor;
    bool await_ready() const { return false; }
    template <typename Promise> void await_suspend(std::coroutine_handle<Promise> coroutine) {
        Resumption::post(executor, coroutine);
    }
    void await_resume() const {}
};

Task<std::string> word(Executor& executor, std::string text) {
    co_await Hop{executor};
    co_return text;
}

Task<std::string> sentence(Executor& executor) {
    const std::string first = co_await word(executor, "two");
    const std::string second = co_await word(executor, "words");
    co_return first + ' ' + second;
}

TEST(TaskTest, runsInTheOrderInWhichItReads) {
    ManualExecutor executor;
    std::vector<std::string> results;
    start(sentence(executor), [&](std::string text) { results.push_back(std::move(text)); });
    EXPECT_TRUE(results.empty());
    executor.runOne();
    EXPECT_TRUE(results.empty());
    executor.runAll();
    EXPECT_EQ(results, std::vector<std::string>{"two words"});
}

TEST(TaskTest, doesNothingUntilItIsStarted) {
    bool hasBegun = false;
    const auto work = [](bool& begun) -> Task<int> {
        begun = true;
        co_return 1;
    };
    { const auto task = work(hasBegun); }
    EXPECT_FALSE(hasBegun);
    int result = 0;
    start(work(hasBegun), [&](int value) { result = value; });
    EXPECT_EQ(result, 1);
}

Task<int> broken(Executor& executor) {
    co_await Hop{executor};
    throw std::runtime_error{"broken"};
}

Task<std::string> repaired(Executor& executor) {
    std::string result;
    try {
        const int value = co_await broken(executor);
        result = std::to_string(value);
    } catch (const std::runtime_error& error) {
        result = error.what();
    }
    co_return result;
}

TEST(TaskTest, passesExceptionsToWhoAwaitsIt) {
    ManualExecutor executor;
    std::string result;
    start(repaired(executor), [&](std::string text) { result = std::move(text); });
    executor.runAll();
    EXPECT_EQ(result, "broken");
}

// The address sanitizer's leak check is the second half of this test.
TEST(TaskTest, endsWithoutAnAnswerWhenItsExecutorDropsIt) {
    std::optional<ManualExecutor> executor{std::in_place};
    const auto owned = std::make_shared<int>(1);
    bool isAnswered = false;
    start(sentence(*executor), [&isAnswered, owned](const std::string&) { isAnswered = true; });
    executor->runOne(); // inside the second word now
    EXPECT_EQ(owned.use_count(), 2);
    executor.reset();
    EXPECT_EQ(owned.use_count(), 1);
    EXPECT_FALSE(isAnswered);
}

} // namespace
} // namespace kelvara
