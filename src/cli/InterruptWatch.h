#pragma once

#include <stop_token>
#include <thread>

namespace kelvara::cli {

/// While it lives, the first Ctrl-C (SIGINT) or SIGTERM requests a stop instead of ending the program; a
/// second one ends it as usual. One at a time.
class InterruptWatch {
public:
    InterruptWatch();
    ~InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;

    [[nodiscard]] std::stop_token token() const { return m_stop.get_token(); }

private:
    std::stop_source m_stop;
    int m_ends[2] = {-1, -1}; // of a pipe: the one thing that a signal handler may use to wake a thread
    std::jthread m_thread;
};

} // namespace kelvara::cli
