#pragma once

#include <QEventLoop>
#include <QTimer>

namespace kelvara {

/// Runs the event loop until `isDone`, which has to become true by events alone. False when it never did:
/// the minute only keeps a broken test from hanging.
template <typename Condition> [[nodiscard]] bool runUntil(Condition isDone) {
    QEventLoop loop;
    QTimer alarm;
    alarm.setSingleShot(true);
    alarm.start(60'000);
    while (!isDone() && alarm.isActive()) loop.processEvents(QEventLoop::WaitForMoreEvents);
    return isDone();
}

} // namespace kelvara
