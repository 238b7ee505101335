#include "imaging/AsyncLimiter.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace kelvara {

AsyncLimiter::Acquisition AsyncLimiter::acquire(Priority priority, std::stop_token stop, Executor& resumeOn) {
    return Acquisition{*this, priority, std::move(stop), resumeOn};
}

void AsyncLimiter::release() {
    Acquisition* next = nullptr;
    {
        const std::lock_guard lock{m_mutex};
        if (m_running == 0) std::terminate();
        if (m_waiters.empty()) {
            --m_running;
            return;
        }
        auto chosen = std::find_if(m_waiters.begin(), m_waiters.end(), [](const Acquisition* waiter) {
            return waiter->m_priority == Priority::high;
        });
        if (chosen == m_waiters.end()) chosen = m_waiters.begin();
        next = *chosen;
        m_waiters.erase(chosen);
        next->m_isGranted = true;
    }
    next->resume();
}

int AsyncLimiter::runningCount() const {
    const std::lock_guard lock{m_mutex};
    return m_running;
}

std::size_t AsyncLimiter::waitingCount() const {
    const std::lock_guard lock{m_mutex};
    return m_waiters.size();
}

bool AsyncLimiter::takeFreeSlot() {
    const std::lock_guard lock{m_mutex};
    if (m_running >= m_limit) return false;
    ++m_running;
    return true;
}

bool AsyncLimiter::enqueue(Acquisition& waiter) {
    const std::lock_guard lock{m_mutex};
    if (m_running < m_limit) { // given back since the caller looked
        ++m_running;
        waiter.m_isGranted = true;
        return false;
    }
    // A stop requested after this line finds the waiter queued, as its callback needs the lock.
    if (waiter.m_stop.stop_requested()) return false;
    m_waiters.push_back(&waiter);
    return true;
}

void AsyncLimiter::cancelWaiter(Acquisition& waiter) {
    {
        const std::lock_guard lock{m_mutex};
        const auto found = std::find(m_waiters.begin(), m_waiters.end(), &waiter);
        if (found == m_waiters.end()) return; // not yet queued, or already admitted
        m_waiters.erase(found);
    }
    waiter.resume();
}

} // namespace kelvara
