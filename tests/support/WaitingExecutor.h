#pragma once

#include "async/Executor.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

namespace kelvara {

/// A main thread that sleeps until there is a job.
class WaitingExecutor : public Executor {
public:
    void post(std::function<void()> job) override {
        const std::scoped_lock lock{m_mutex};
        m_jobs.push_back(std::move(job));
        m_wake.notify_one();
    }
    void runOne() {
        std::unique_lock lock{m_mutex};
        m_wake.wait(lock, [this] { return !m_jobs.empty(); });
        const auto job = std::move(m_jobs.front());
        m_jobs.pop_front();
        lock.unlock();
        job();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_jobs;
};

} // namespace kelvara
