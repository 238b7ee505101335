#include "platform/linux/TerminationWatch.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace kelvara {

namespace {

constexpr int watchedSignals[] = {SIGTERM, SIGINT, SIGHUP};
std::atomic<int> handlerEvent = -1;
static_assert(std::atomic<int>::is_always_lock_free);

void noteSignal(int) {
    const auto errorBefore = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(handlerEvent, &one, sizeof one);
    errno = errorBefore;
}

void setHandlers(void (*handler)(int), int flags) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    for (const auto signal : watchedSignals) {
        struct sigaction before {};
        ::sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) ::sigaction(signal, &action, nullptr); // nohup stays in force
    }
}

} // namespace

TerminationWatch::TerminationWatch(std::function<void()> onTermination)
    : m_onTermination{std::move(onTermination)}, m_event{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)},
      m_notifier{m_event, QSocketNotifier::Read} {
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] {
        std::uint64_t count = 0;
        if (::read(m_event, &count, sizeof count) > 0) m_onTermination();
    });
    handlerEvent = m_event;
    // Handled once; programs that are started from here begin without handlers, which a mask would not give.
    setHandlers(noteSignal, SA_RESTART | static_cast<int>(SA_RESETHAND));
}

TerminationWatch::~TerminationWatch() {
    setHandlers(SIG_DFL, 0);
    handlerEvent = -1;
    ::close(m_event);
}

} // namespace kelvara
