#pragma once

#include "app/X11ScreenProfiles.h"
#include "async/LatestOnly.h"
#include "imaging/ColorProfile.h"
#include "platform/FileSystem.h"
#include "platform/linux/ColordProfiles.h"

#include <QObject>

#include <functional>

class QScreen;
class QWidget;

namespace kelvara {

/// Keeps `DisplayColorSpace` that of the screen on which a window is shown: the profile that the X server
/// tells, else the one that colord knows, else sRGB. Main thread.
class ScreenColorSpaceObserver : public QObject {
    Q_OBJECT

public:
    /// `onChange` follows each change of `DisplayColorSpace::current()`: pictures prepared until then are in
    /// the old colours. Everything outlives it.
    ScreenColorSpaceObserver(QWidget& window, const QDBusConnection& systemBus, const FileSystem& files,
                             Executor& background, Executor& main, std::function<void()> onChange);
    ~ScreenColorSpaceObserver() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void followWindow();
    void sync();
    void askColord(const QScreen& screen);
    void adopt(const ColorProfilePtr& profile);

    QWidget& m_window;
    const FileSystem& m_files;
    std::function<void()> m_onChange;
    X11ScreenProfiles m_x11;
    ColordProfiles m_colord;
    LatestOnly m_reading;    // of a profile's file
    unsigned m_question = 0; // answers to older ones come too late
    bool m_followsWindow = false;
};

} // namespace kelvara
