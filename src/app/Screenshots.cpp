#include "app/Screenshots.h"

#include "views/SideWindow.h"

#include <QDir>
#include <QPixmap>

#include <chrono>
#include <cstdio>
#include <utility>

namespace kelvara {

namespace {

constexpr auto interval = std::chrono::milliseconds{100};
constexpr qint64 patience = 20'000; // milliseconds
// A view asks for its images only after it has been laid out and painted.
constexpr int settledLooksNeeded = 3;

} // namespace

QStringList Screenshots::names() {
    QStringList names;
    for (const auto& state : screenshotStates()) names.append(state.name);
    return names;
}

Screenshots::Screenshots(LibraryViewModel& library, RootView& window, QString folder,
                         const QStringList& names, std::function<void(int)> onEnd)
    : m_library{library}, m_window{window}, m_folder{std::move(folder)}, m_onEnd{std::move(onEnd)},
      m_states{screenshotStates()} {
    std::erase_if(m_states, [&](const ScreenshotState& state) {
        return !names.isEmpty() && !names.contains(state.name);
    });
    m_sinceStep.start();
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &Screenshots::look);
    m_timer.start();
}

void Screenshots::look() {
    const auto hasNothing = !m_library.isScanning() && m_library.items().empty();
    if (hasNothing) {
        const auto& reason = m_library.scanError();
        std::fprintf(stderr, "kelvara: nothing to show%s%s\n", reason.empty() ? "" : ": ", reason.c_str());
        return end(1);
    }
    m_settledLooks = m_window.isSettled() && !m_library.isCopying() ? m_settledLooks + 1 : 0;
    const auto isLate = m_sinceStep.hasExpired(patience);
    if (!isLate && m_settledLooks < settledLooksNeeded) return;
    if (!m_isEntered) return enterNext();
    if (!save(m_states.front().name)) return end(1);
    m_states.front().leave(m_library, m_window);
    m_states.erase(m_states.begin());
    enterNext();
}

void Screenshots::enterNext() {
    if (m_states.empty()) return end(0);
    m_states.front().enter(m_library, m_window);
    m_isEntered = true;
    m_settledLooks = 0;
    m_sinceStep.restart();
}

bool Screenshots::save(const QString& name) {
    const QDir folder{m_folder};
    const auto path = folder.filePath(name + QStringLiteral(".png"));
    auto* side = visibleSideWindow();
    auto picture = side ? side->grab() : m_window.grab();
    if (!folder.mkpath(QStringLiteral(".")) || !picture.save(path)) {
        std::fprintf(stderr, "kelvara: couldn't write %s\n", qPrintable(path));
        return false;
    }
    std::printf("%s\n", qPrintable(path));
    return true;
}

void Screenshots::end(int status) {
    m_timer.stop();
    m_onEnd(status);
}

} // namespace kelvara
