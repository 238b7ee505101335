#pragma once

#include <QObject>
#include <QRect>

class QScreen;
class QWidget;

namespace kelvara {

/// `frame` made small enough for the screen and moved onto it. `available` is the screen without panels.
[[nodiscard]] QRect fittedFrame(const QRect& frame, const QRect& available);

/// Keeps a window on its screen: when it is shown, when it comes to another screen and when that one changes.
/// Window systems that place windows themselves leave it the size. A child of the window.
class WindowFrameGuard : public QObject {
    Q_OBJECT

public:
    explicit WindowFrameGuard(QWidget& window);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow(QScreen* screen);
    /// When what happens now is through.
    void fitSoon();
    void fitWindowToScreen();

    QWidget& m_window;
    QScreen* m_screen = nullptr; // the one that is followed
    bool m_awaitsFrame = false;  // shown, but the window manager may not have put its frame around it
};

} // namespace kelvara
