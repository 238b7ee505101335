#include "async/ThreadPool.h"

#include <utility>

namespace kelvara {

ThreadPool::ThreadPool(unsigned threads, AtEnd atEnd) : m_atEnd{atEnd} {
    for (unsigned i = 0; i < threads; ++i) m_threads.emplace_back([this] { run(); });
}

ThreadPool::~ThreadPool() { end(); }

void ThreadPool::end() {
    std::deque<std::function<void()>> dropped; // destroyed after the lock is gone: a job may own anything
    {
        const std::lock_guard lock{m_mutex};
        m_isEnding = true;
        if (m_atEnd == AtEnd::drop) dropped.swap(m_jobs);
    }
    m_wake.notify_all();
    m_threads.clear();
}

void ThreadPool::post(std::function<void()> job) {
    {
        const std::lock_guard lock{m_mutex};
        if (m_isEnding) return;
        m_jobs.push_back(std::move(job));
    }
    m_wake.notify_one();
}

void ThreadPool::run() {
    for (;;) {
        std::function<void()> job;
        {
            std::unique_lock lock{m_mutex};
            m_wake.wait(lock, [this] { return m_isEnding || !m_jobs.empty(); });
            if (m_jobs.empty()) return;
            job = std::move(m_jobs.front());
            m_jobs.pop_front();
        }
        job();
    }
}

} // namespace kelvara
