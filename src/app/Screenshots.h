#pragma once

#include "library/LibraryViewModel.h"
#include "views/RootView.h"

#include <QElapsedTimer>
#include <QString>
#include <QTimer>

#include <functional>

namespace kelvara {

/// Takes pictures of the real window for documentation and servers: the grid once its thumbnails are there,
/// then the single image at full resolution. What is not there after 20 seconds is taken as it is.
class Screenshots : public QObject {
    Q_OBJECT

public:
    /// `onEnd` gets the exit status: 0 when both pictures were written. References outlive it.
    Screenshots(LibraryViewModel& library, RootView& window, QString folder, std::function<void(int)> onEnd);

private:
    enum class Step { grid, loupe, done };
    void look();
    bool save(const QString& name);
    void end(int status);

    LibraryViewModel& m_library;
    RootView& m_window;
    QString m_folder;
    std::function<void(int)> m_onEnd;
    Step m_step = Step::grid;
    int m_settledLooks = 0;
    QElapsedTimer m_sinceStep;
    QTimer m_timer;
};

} // namespace kelvara
