#pragma once

#include "async/Executor.h"

#include <deque>
#include <utility>

namespace kelvara {

/// Runs jobs when the test says so.
class ManualExecutor : public Executor {
public:
    void post(std::function<void()> job) override { m_jobs.push_back(std::move(job)); }

    /// False when there was none.
    bool runOne() {
        if (m_jobs.empty()) return false;
        const auto job = std::move(m_jobs.front());
        m_jobs.pop_front();
        job();
        return true;
    }
    void runAll() {
        while (runOne()) {
        }
    }
    [[nodiscard]] std::size_t pending() const { return m_jobs.size(); }

private:
    std::deque<std::function<void()>> m_jobs;
};

/// Runs what both have until neither has anything left, as a main loop with a background thread would.
inline void runAll(ManualExecutor& background, ManualExecutor& main) {
    while (background.runOne() || main.runOne()) {
    }
}

} // namespace kelvara
