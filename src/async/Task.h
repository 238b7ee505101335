#pragma once

#include "async/Executor.h"

#include <coroutine>
#include <exception>
#include <memory>
#include <optional>
#include <utility>

namespace kelvara {

/// A suspended coroutine on its way through an executor. When the executor drops it, as a pool does at its
/// end, the whole chain of coroutines that awaits it is destroyed, and nobody is told.
class Resumption {
public:
    /// Runs the coroutine on from `executor`. May be its last touch: the coroutine can end on another thread
    /// before this returns.
    template <typename Promise>
    static void post(Executor& executor, std::coroutine_handle<Promise> suspended) {
        post(executor, suspended, suspended.promise().root);
    }
    static void post(Executor& executor, std::coroutine_handle<> suspended, std::coroutine_handle<> root) {
        executor.post([resumption = std::make_shared<Resumption>(suspended, root)] { resumption->resume(); });
    }

    Resumption(std::coroutine_handle<> suspended, std::coroutine_handle<> root)
        : m_suspended{suspended}, m_root{root} {}
    Resumption(const Resumption&) = delete;
    Resumption& operator=(const Resumption&) = delete;
    ~Resumption() {
        if (m_root) m_root.destroy();
    }

private:
    void resume() {
        m_root = nullptr;
        m_suspended.resume();
    }

    std::coroutine_handle<> m_suspended;
    std::coroutine_handle<> m_root; // the outermost coroutine, which owns the others
};

/// Work that can wait without a thread: a coroutine that begins when it is awaited or given to `start`, and
/// gives a value or passes on the exception that ended it. Cancellation is the `std::stop_token` that it is
/// called with.
///
/// Arguments are best taken by value, as they have to live until the end. g++ 12 rule: `co_await` stands
/// alone in a statement or initialiser. Awaiting many tasks that never suspend in one loop grows the stack in
/// debug builds.
template <typename T> class [[nodiscard]] Task {
public:
    struct promise_type {
        std::coroutine_handle<> waiting; // who awaits this task
        std::coroutine_handle<> root;
        std::optional<T> value;
        std::exception_ptr exception;

        struct ResumeWaiting {
            bool await_ready() noexcept { return false; }
            std::coroutine_handle<> await_suspend(std::coroutine_handle<promise_type> ended) noexcept {
                return ended.promise().waiting;
            }
            void await_resume() noexcept {}
        };

        Task get_return_object() { return Task{std::coroutine_handle<promise_type>::from_promise(*this)}; }
        std::suspend_always initial_suspend() noexcept { return {}; }
        ResumeWaiting final_suspend() noexcept { return {}; }
        template <typename Value> void return_value(Value&& result) {
            value.emplace(std::forward<Value>(result));
        }
        void unhandled_exception() { exception = std::current_exception(); }
    };

    Task(Task&& other) noexcept : m_coroutine{std::exchange(other.m_coroutine, nullptr)} {}
    Task& operator=(Task&&) = delete;
    ~Task() {
        if (m_coroutine) m_coroutine.destroy();
    }

    bool await_ready() const noexcept { return false; }
    template <typename Promise>
    std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> waiting) {
        m_coroutine.promise().waiting = waiting;
        m_coroutine.promise().root = waiting.promise().root;
        return m_coroutine;
    }
    T await_resume() {
        auto& promise = m_coroutine.promise();
        if (promise.exception) std::rethrow_exception(promise.exception);
        return std::move(*promise.value);
    }

private:
    explicit Task(std::coroutine_handle<promise_type> coroutine) : m_coroutine{coroutine} {}

    std::coroutine_handle<promise_type> m_coroutine;
};

namespace detail {

/// The outermost coroutine of a started task; ends itself.
struct StartedTask {
    struct promise_type {
        std::coroutine_handle<> root = std::coroutine_handle<promise_type>::from_promise(*this);

        StartedTask get_return_object() { return {}; }
        std::suspend_never initial_suspend() noexcept { return {}; }
        std::suspend_never final_suspend() noexcept { return {}; }
        void return_void() {}
        void unhandled_exception() { std::terminate(); }
    };
};

template <typename T, typename Done> StartedTask runTask(Task<T> task, Done done) {
    auto value = co_await task;
    done(std::move(value));
}

} // namespace detail

/// Begins `task` on this thread; `done(T)` is called on the thread on which it ends, possibly this one before
/// `start` returns. Failures of started tasks are values: an exception that gets here ends the program.
template <typename T, typename Done> void start(Task<T> task, Done done) {
    detail::runTask(std::move(task), std::move(done));
}

} // namespace kelvara
