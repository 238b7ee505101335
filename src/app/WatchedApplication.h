#pragma once

#include <QApplication>

namespace kelvara {

/// The application object of debug builds: says on standard error which event kept the main thread from the
/// screen's next frame.
class WatchedApplication : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override;

private:
    int m_watchedLoop = 0;  // the event loop, 1 the outermost, whose event is being watched
    int m_nestedEvents = 0; // that loops inside a watched event have handled
};

} // namespace kelvara
