#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <functional>

namespace kelvara {

/// Turns the signals that ask a program to end (SIGTERM, SIGINT, SIGHUP) into a call on the main thread. A
/// second one ends the program as it would without this. One at a time exists.
class TerminationWatch {
public:
    explicit TerminationWatch(std::function<void()> onTermination);
    ~TerminationWatch();
    TerminationWatch(const TerminationWatch&) = delete;
    TerminationWatch& operator=(const TerminationWatch&) = delete;

private:
    std::function<void()> m_onTermination;
    int m_event; // written by the signal handler
    QSocketNotifier m_notifier;
};

} // namespace kelvara
