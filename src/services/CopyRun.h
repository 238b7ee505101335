#pragma once

#include "services/CopyService.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace kelvara {

/// The plans of one `copy` on their way through its threads. The threads take plans and give outcomes; the
/// report is the calling thread's alone.
class CopyService::Run {
public:
    /// Begins. All arguments outlive it.
    Run(const CopyService& service, const std::vector<Plan>& plans, const Ratings& ratings,
        const std::stop_token& stop);

    /// Waits for the next file to finish; empty when there will be none.
    std::optional<Finished> next();

private:
    void work();
    const Plan* take();
    void give(std::vector<Finished> finished);

    const CopyService& m_service;
    const std::vector<Plan>& m_plans;
    const Ratings& m_ratings;
    const std::stop_token& m_stop;
    std::mutex m_mutex; // guards all below but the threads
    std::condition_variable m_changed;
    std::size_t m_begun = 0;
    std::size_t m_running = 0;
    std::deque<Finished> m_finished;
    std::vector<std::jthread> m_threads; // last: they end before what they use
};

} // namespace kelvara
