#pragma once

#include "app/ScreenshotStates.h"

#include <QElapsedTimer>
#include <QStringList>
#include <QTimer>

#include <functional>
#include <vector>

namespace kelvara {

/// Takes pictures of the real windows in their states, one after the other, for documentation and servers:
/// each once its photos are there. What is not there after 20 seconds is taken as it is.
class Screenshots : public QObject {
    Q_OBJECT

public:
    /// Writes "NAME.png" to `folder` for each of `names`, or for every state where there are none. `onEnd`
    /// gets the exit status: 0 when all were written. References outlive it.
    Screenshots(LibraryViewModel& library, RootView& window, QString folder, const QStringList& names,
                std::function<void(int)> onEnd);

    /// Of all states, in the order in which they are taken.
    [[nodiscard]] static QStringList names();

private:
    void look();
    void enterNext();
    bool save(const QString& name);
    void end(int status);

    LibraryViewModel& m_library;
    RootView& m_window;
    QString m_folder;
    std::function<void(int)> m_onEnd;
    std::vector<ScreenshotState> m_states; // to come; the first one is shown
    bool m_isEntered = false;
    int m_settledLooks = 0;
    QElapsedTimer m_sinceStep;
    QTimer m_timer;
};

} // namespace kelvara
