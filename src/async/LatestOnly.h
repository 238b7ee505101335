#pragma once

#include "async/Executor.h"

#include <memory>
#include <stop_token>
#include <utility>

namespace kelvara {

/// Work of which only the newest matters, such as the scan of the current folder: starting anew cancels what
/// still runs, and a cancelled run delivers nothing. Owned and called on the main thread, so that no late
/// result can slip in between the cancellation and its effect.
class LatestOnly {
public:
    /// Both executors outlive it.
    LatestOnly(Executor& background, Executor& main) : m_background{background}, m_main{main} {}
    ~LatestOnly() { cancel(); }
    LatestOnly(const LatestOnly&) = delete;
    LatestOnly& operator=(const LatestOnly&) = delete;

    /// Runs `work(stop_token)` in the background, then `deliver(result)` on the main thread.
    template <typename Work, typename Deliver> void start(Work work, Deliver deliver) {
        cancel();
        m_stop = std::stop_source{};
        m_background.post([&main = m_main, stop = m_stop.get_token(), work = std::move(work),
                           deliver = std::move(deliver)]() mutable {
            if (stop.stop_requested()) return;
            // Shared, because a posted job has to be copyable and a result need not be.
            auto result = std::make_shared<decltype(work(stop))>(work(stop));
            main.post([stop, result = std::move(result), deliver = std::move(deliver)]() mutable {
                if (!stop.stop_requested()) deliver(std::move(*result));
            });
        });
    }

    void cancel() { m_stop.request_stop(); }

private:
    Executor& m_background;
    Executor& m_main;
    std::stop_source m_stop;
};

} // namespace kelvara
