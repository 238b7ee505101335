#pragma once

#include "async/Executor.h"

#include <deque>
#include <functional>
#include <memory>

namespace kelvara {

/// Two queues in front of one executor: a job of `urgent()` overtakes every job of `background()` that has
/// not begun. Background jobs never take all threads, so that an urgent one finds one free.
class PriorityLanes {
public:
    /// `executor` outlives it; at most `maximumBackground` (at least one) background jobs run at once. With a
    /// ThreadPool, one less than its threads.
    PriorityLanes(Executor& executor, unsigned maximumBackground);

    [[nodiscard]] Executor& urgent() { return m_urgent; }
    [[nodiscard]] Executor& background() { return m_background; }

private:
    struct Queues;
    class Lane : public Executor {
    public:
        Lane(Executor& executor, std::shared_ptr<Queues> queues,
             std::deque<std::function<void()>> Queues::*jobs)
            : m_executor{executor}, m_queues{std::move(queues)}, m_jobs{jobs} {}
        void post(std::function<void()> job) override;

    private:
        Executor& m_executor;
        std::shared_ptr<Queues> m_queues;
        std::deque<std::function<void()>> Queues::*m_jobs;
    };

    std::shared_ptr<Queues> m_queues; // jobs already handed to the executor keep it
    Lane m_urgent;
    Lane m_background;
};

} // namespace kelvara
