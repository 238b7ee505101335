#include "app/Screenshots.h"

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

Screenshots::Screenshots(LibraryViewModel& library, RootView& window, QString folder,
                         std::function<void(int)> onEnd)
    : m_library{library}, m_window{window}, m_folder{std::move(folder)}, m_onEnd{std::move(onEnd)} {
    m_sinceStep.start();
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &Screenshots::look);
    m_timer.start();
}

void Screenshots::look() {
    m_settledLooks = m_window.isSettled() ? m_settledLooks + 1 : 0;
    const auto isLate = m_sinceStep.hasExpired(patience);
    const auto hasNothing = !m_library.isScanning() && m_library.visibleItems().isEmpty();
    if (hasNothing) {
        const auto& reason = m_library.scanError();
        std::fprintf(stderr, "kelvara: nothing to show%s%s\n", reason.empty() ? "" : ": ", reason.c_str());
        return end(1);
    }
    if (!isLate && m_settledLooks < settledLooksNeeded) return;
    m_settledLooks = 0;
    m_sinceStep.restart();
    if (m_step == Step::grid) {
        if (!save(QStringLiteral("grid.png"))) return end(1);
        m_step = Step::loupe;
        m_library.toggleViewMode();
        return;
    }
    end(save(QStringLiteral("loupe.png")) ? 0 : 1);
}

bool Screenshots::save(const QString& name) {
    const QDir folder{m_folder};
    const auto path = folder.filePath(name);
    if (!folder.mkpath(QStringLiteral(".")) || !m_window.grab().save(path)) {
        std::fprintf(stderr, "kelvara: couldn't write %s\n", qPrintable(path));
        return false;
    }
    std::printf("%s\n", qPrintable(path));
    return true;
}

void Screenshots::end(int status) {
    m_step = Step::done;
    m_timer.stop();
    m_onEnd(status);
}

} // namespace kelvara
