#pragma once

#include "async/Executor.h"
#include "async/Task.h"

#include <coroutine>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <stop_token>

namespace kelvara {

/// Lets a fixed number of callers work at once and queues the others without holding their threads: high
/// before low priority, oldest first within each. Low ones wait as long as high ones keep coming.
/// Thread-safe.
class AsyncLimiter {
public:
    enum class Priority { high, low };
    class Acquisition;

    /// `limit` is at least 1.
    explicit AsyncLimiter(int limit) : m_limit{limit} {}
    AsyncLimiter(const AsyncLimiter&) = delete;
    AsyncLimiter& operator=(const AsyncLimiter&) = delete;

    /// `const bool granted = co_await limiter.acquire(...)`: true when the caller holds a slot, which it
    /// gives back with exactly one `release()`; false when `stop` was requested first. A free slot is granted
    /// without suspending, on this thread, even when stop was requested; else the caller goes on from
    /// `resumeOn`. A stop that comes after the slot changes nothing.
    [[nodiscard]] Acquisition acquire(Priority priority, std::stop_token stop, Executor& resumeOn);

    /// Gives a slot back, or hands it straight to the next in line. One without `acquire` ends the program.
    void release();

    /// A momentary view.
    [[nodiscard]] int runningCount() const;
    [[nodiscard]] std::size_t waitingCount() const;

private:
    bool takeFreeSlot();
    /// Whether the caller has to wait; its `m_isGranted` is right when it has not.
    bool enqueue(Acquisition& waiter);
    void cancelWaiter(Acquisition& waiter);

    const int m_limit;
    mutable std::mutex m_mutex;
    int m_running = 0;
    std::deque<Acquisition*> m_waiters; // oldest first; only while all slots are taken
};

/// One wait for a slot; lives in the frame of the waiting coroutine.
class AsyncLimiter::Acquisition {
public:
    Acquisition(AsyncLimiter& limiter, Priority priority, std::stop_token stop, Executor& resumeOn)
        : m_limiter{limiter}, m_priority{priority}, m_stop{std::move(stop)}, m_resumeOn{resumeOn} {}
    Acquisition(const Acquisition&) = delete;
    Acquisition& operator=(const Acquisition&) = delete;

    bool await_ready() { return m_isGranted = m_limiter.takeFreeSlot(); }

    template <typename Promise> bool await_suspend(std::coroutine_handle<Promise> coroutine) {
        m_coroutine = coroutine;
        m_root = coroutine.promise().root;
        // Registered before the queue knows this waiter: once queued it can be resumed, and end, at any
        // moment.
        m_onStop.emplace(m_stop, [this] { m_limiter.cancelWaiter(*this); });
        return m_limiter.enqueue(*this);
    }

    bool await_resume() const { return m_isGranted; }

private:
    friend class AsyncLimiter;
    void resume() { Resumption::post(m_resumeOn, m_coroutine, m_root); }

    AsyncLimiter& m_limiter;
    const Priority m_priority;
    const std::stop_token m_stop;
    Executor& m_resumeOn;
    std::coroutine_handle<> m_coroutine;
    std::coroutine_handle<> m_root;
    bool m_isGranted = false;
    // Its end waits for a cancellation that runs on another thread, so the frame outlives that.
    std::optional<std::stop_callback<std::function<void()>>> m_onStop;
};

} // namespace kelvara
