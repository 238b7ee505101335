#include "cli/InterruptWatch.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace kelvara::cli {

namespace {

constexpr char interrupted = 'i';
constexpr char ended = 'e';
constexpr std::array watchedSignals{SIGINT, SIGTERM};

std::atomic<int> writeEnd{-1};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler must not wait");

void onSignal(int) {
    const int before = errno;
    (void)!::write(writeEnd, &interrupted, 1);
    errno = before;
}

} // namespace

InterruptWatch::InterruptWatch() {
    if (::pipe2(m_ends, O_CLOEXEC) != 0) return; // signals then end the program, as they do without a watch
    writeEnd = m_ends[1];
    m_thread = std::jthread{[this] {
        char received = 0;
        while (::read(m_ends[0], &received, 1) < 0 && errno == EINTR) {
        }
        if (received == interrupted) m_stop.request_stop();
    }};
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    for (const int signal : watchedSignals) ::sigaction(signal, &action, nullptr);
}

InterruptWatch::~InterruptWatch() {
    if (m_ends[0] < 0) return;
    for (const int signal : watchedSignals) (void)std::signal(signal, SIG_DFL);
    (void)!::write(m_ends[1], &ended, 1);
    m_thread.join();
    writeEnd = -1;
    for (const int end : m_ends) ::close(end);
}

} // namespace kelvara::cli
