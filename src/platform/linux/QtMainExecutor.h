#pragma once

#include "async/Executor.h"

#include <QAbstractEventDispatcher>
#include <QMetaObject>
#include <QObject>
#include <atomic>
#include <utility>

namespace kelvara {

/// Runs jobs on the thread that made it, from that thread's Qt event loop: the application's main thread.
///
/// A nested event loop (a modal dialog) keeps running the jobs behind the one that opened it. Its end drops
/// the jobs that have not begun; it outlives every thread that posts.
class QtMainExecutor : public Executor {
public:
    void post(std::function<void()> job) override {
        m_waiting.fetch_add(1, std::memory_order_relaxed);
        auto run = [this, job = std::move(job)] {
            // A nested loop would sleep on events that were posted before it began.
            const bool areMoreWaiting = m_waiting.fetch_sub(1, std::memory_order_relaxed) > 1;
            auto* dispatcher = areMoreWaiting ? QAbstractEventDispatcher::instance() : nullptr;
            if (dispatcher) dispatcher->wakeUp();
            job();
        };
        QMetaObject::invokeMethod(&m_receiver, std::move(run), Qt::QueuedConnection);
    }

private:
    std::atomic<int> m_waiting = 0;
    QObject m_receiver;
};

} // namespace kelvara
