#pragma once

#include <csignal>
#include <stop_token>
#include <thread>

namespace kelvara::cli {

/// While it lives, the first Ctrl-C (SIGINT) or SIGTERM requests a stop instead of ending the program; a
/// second one ends it as usual. Made before the threads that are to be interrupted, ended by the thread that
/// made it, one at a time.
class InterruptWatch {
public:
    InterruptWatch();
    ~InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;

    [[nodiscard]] std::stop_token token() const { return m_stop.get_token(); }

private:
    std::stop_source m_stop;
    sigset_t m_maskBefore{}; // the signals that the making thread blocked
    std::jthread m_thread;
};

} // namespace kelvara::cli
