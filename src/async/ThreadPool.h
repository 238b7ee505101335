#pragma once

#include "async/Executor.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace kelvara {

/// A fixed number of threads that start jobs oldest first; with one thread, one job after the other. Its end
/// waits for the jobs that run.
class ThreadPool : public Executor {
public:
    /// What becomes of the jobs that have not begun when the pool ends: work for a view that is gone is
    /// dropped, a write that the user was promised is finished.
    enum class AtEnd { drop, finish };

    explicit ThreadPool(unsigned threads, AtEnd atEnd = AtEnd::drop);
    ~ThreadPool() override;
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    void post(std::function<void()> job) override;
    /// Ends before the pool does, for owners whose jobs post again until they are gone: waits like the
    /// destructor; what is posted from then on is dropped.
    void end();

private:
    void run();

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_jobs;
    AtEnd m_atEnd;
    bool m_isEnding = false;
    std::vector<std::jthread> m_threads;
};

} // namespace kelvara
