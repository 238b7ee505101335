#include "cli/InterruptWatch.h"

#include <csignal>
#include <initializer_list>

namespace kelvara::cli {

namespace {

/// Sent to the watching thread only, to end it.
constexpr int endSignal = SIGUSR1;

sigset_t signalSet(std::initializer_list<int> signals) {
    sigset_t set;
    ::sigemptyset(&set);
    for (const int signal : signals) ::sigaddset(&set, signal);
    return set;
}

int waitFor(const sigset_t& signals) {
    int received = 0;
    while (::sigwait(&signals, &received) != 0) {
    }
    return received;
}

} // namespace

InterruptWatch::InterruptWatch() {
    const auto watched = signalSet({SIGINT, SIGTERM, endSignal});
    // Threads inherit what is blocked, so that only the one that waits for the signals gets them.
    ::pthread_sigmask(SIG_BLOCK, &watched, &m_maskBefore);
    m_thread = std::jthread{[this, watched] {
        if (waitFor(watched) == endSignal) return;
        m_stop.request_stop();
        // A second signal reaches this thread and ends the program.
        const auto interrupts = signalSet({SIGINT, SIGTERM});
        ::pthread_sigmask(SIG_UNBLOCK, &interrupts, nullptr);
        waitFor(signalSet({endSignal}));
    }};
}

InterruptWatch::~InterruptWatch() {
    ::pthread_kill(m_thread.native_handle(), endSignal);
    m_thread.join();
    ::pthread_sigmask(SIG_SETMASK, &m_maskBefore, nullptr);
}

} // namespace kelvara::cli
