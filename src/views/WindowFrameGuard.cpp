#include "views/WindowFrameGuard.h"

#include <QEvent>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace kelvara {

QRect fittedFrame(const QRect& frame, const QRect& available) {
    const auto width = std::min(frame.width(), available.width());
    const auto height = std::min(frame.height(), available.height());
    const auto lastX = available.x() + available.width() - width;
    const auto lastY = available.y() + available.height() - height;
    return {std::clamp(frame.x(), available.x(), lastX), std::clamp(frame.y(), available.y(), lastY), width,
            height};
}

WindowFrameGuard::WindowFrameGuard(QWidget& window) : QObject{&window}, m_window{window} {
    window.installEventFilter(this);
}

bool WindowFrameGuard::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
    case QEvent::Show:
        if (!m_screen)
            connect(m_window.windowHandle(), &QWindow::screenChanged, this, &WindowFrameGuard::follow);
        follow(m_window.screen());
        m_awaitsFrame = true;
        break;
    case QEvent::Move:
        if (m_awaitsFrame) fitSoon();
        break;
    case QEvent::WindowActivate:
        // Window managers put their frames on before that, and the user moves nothing before it.
        if (std::exchange(m_awaitsFrame, false)) fitSoon();
        break;
    default:
        break;
    }
    return false;
}

void WindowFrameGuard::follow(QScreen* screen) {
    if (!screen) return;
    if (screen != m_screen) {
        if (m_screen) disconnect(m_screen, nullptr, this, nullptr);
        m_screen = screen;
        connect(screen, &QScreen::availableGeometryChanged, this, &WindowFrameGuard::fitWindowToScreen);
        connect(screen, &QObject::destroyed, this, [this] { m_screen = nullptr; });
    }
    fitSoon();
}

void WindowFrameGuard::fitSoon() {
    QMetaObject::invokeMethod(this, &WindowFrameGuard::fitWindowToScreen, Qt::QueuedConnection);
}

void WindowFrameGuard::fitWindowToScreen() {
    if (!m_window.isVisible() || m_window.isFullScreen() || m_window.isMaximized()) return;
    const auto frame = m_window.frameGeometry();
    const auto fitted = fittedFrame(frame, m_window.screen()->availableGeometry());
    if (fitted == frame) return;
    const auto decoration = frame.size() - m_window.size();
    m_window.resize(fitted.size() - decoration);
    m_window.move(fitted.topLeft());
}

} // namespace kelvara
