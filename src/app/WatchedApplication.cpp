#include "app/WatchedApplication.h"

#include <QElapsedTimer>
#include <QEvent>
#include <QMetaEnum>
#include <QThread>

#include <cstdio>
#include <utility>

namespace kelvara {

namespace {
/// A frame at 60 a second.
constexpr qint64 longestMilliseconds = 16;
} // namespace

bool WatchedApplication::notify(QObject* receiver, QEvent* event) {
    const auto loop = QThread::currentThread()->loopLevel();
    if (QThread::currentThread() != thread() || loop <= m_watchedLoop)
        return QApplication::notify(receiver, event);
    // Both may be gone afterwards.
    const auto type = event->type();
    const auto* name = receiver->metaObject()->className();
    const auto outer = std::exchange(m_watchedLoop, loop);
    const auto nestedBefore = m_nestedEvents;
    QElapsedTimer clock;
    clock.start();
    const auto result = QApplication::notify(receiver, event);
    const auto elapsed = clock.elapsed();
    m_watchedLoop = outer;
    // A dialog that runs a loop of its own blocks nothing.
    const auto ranLoop = m_nestedEvents != nestedBefore;
    if (outer > 0) ++m_nestedEvents;
    if (elapsed > longestMilliseconds && !ranLoop) {
        const auto* typeName = QMetaEnum::fromType<QEvent::Type>().valueToKey(type);
        std::fprintf(stderr, "kelvara: the main thread was busy for %lld ms: %s of %s\n",
                     static_cast<long long>(elapsed), typeName ? typeName : "event", name);
    }
    return result;
}

} // namespace kelvara
