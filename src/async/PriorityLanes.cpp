#include "async/PriorityLanes.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace kelvara {

struct PriorityLanes::Queues {
    explicit Queues(unsigned maximum) : maximumBackground{maximum} {}

    /// Runs the job that matters most now, and further ones while there are any that may run: a turn may find
    /// only background jobs that have to wait, and then the running background job takes them up.
    void runNext();

    std::mutex mutex;
    std::deque<std::function<void()>> urgent;
    std::deque<std::function<void()>> background;
    const unsigned maximumBackground;
    unsigned runningBackground = 0;
    unsigned skippedTurns = 0;
};

void PriorityLanes::Queues::runNext() {
    std::unique_lock lock{mutex};
    // One turn was posted for each job. A turn that must leave its background job waiting is remembered and
    // taken later by the background job that ends.
    for (unsigned turns = 1; turns > 0; --turns) {
        const bool isUrgent = !urgent.empty();
        if (!isUrgent && background.empty()) return;
        if (!isUrgent && runningBackground >= maximumBackground) {
            ++skippedTurns;
            return;
        }
        auto& queue = isUrgent ? urgent : background;
        auto job = std::move(queue.front());
        queue.pop_front();
        if (!isUrgent) ++runningBackground;
        lock.unlock();
        job();
        job = nullptr; // what it owns ends outside the lock
        lock.lock();
        if (isUrgent) continue;
        --runningBackground;
        if (skippedTurns > 0) {
            --skippedTurns;
            ++turns;
        }
    }
}

PriorityLanes::PriorityLanes(Executor& executor, unsigned maximumBackground)
    : m_queues{std::make_shared<Queues>(std::max(1U, maximumBackground))},
      m_urgent{executor, m_queues, &Queues::urgent}, m_background{executor, m_queues, &Queues::background} {}

void PriorityLanes::Lane::post(std::function<void()> job) {
    {
        const std::lock_guard lock{m_queues->mutex};
        ((*m_queues).*m_jobs).push_back(std::move(job));
    }
    m_executor.post([queues = m_queues] { queues->runNext(); });
}

} // namespace kelvara
