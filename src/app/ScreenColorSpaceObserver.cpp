#include "app/ScreenColorSpaceObserver.h"

#include "imaging/DisplayColorSpace.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <span>
#include <utility>

namespace kelvara {

namespace {

constexpr std::int64_t largestProfile = std::int64_t{16} << 20;

ColorProfilePtr readProfile(const FileSystem& files, const FileURL& url) {
    const auto bytes = files.readFile(url, largestProfile);
    if (!bytes) return nullptr;
    return ColorProfile::fromIcc({reinterpret_cast<const std::uint8_t*>(bytes->data()), bytes->size()});
}

} // namespace

ScreenColorSpaceObserver::ScreenColorSpaceObserver(QWidget& window, const QDBusConnection& systemBus,
                                                   const FileSystem& files, Executor& background,
                                                   Executor& main, std::function<void()> onChange)
    : m_window{window}, m_files{files}, m_onChange{std::move(onChange)}, m_x11{[this] { sync(); }},
      m_colord{systemBus}, m_reading{background, main} {
    connect(&m_colord, &ColordProfiles::changed, this, &ScreenColorSpaceObserver::sync);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &ScreenColorSpaceObserver::sync);
    window.installEventFilter(this);
    if (window.windowHandle()) followWindow();
}

ScreenColorSpaceObserver::~ScreenColorSpaceObserver() = default;

bool ScreenColorSpaceObserver::eventFilter(QObject*, QEvent* event) {
    // Only a window that has been shown once is on a screen of its own.
    if (event->type() == QEvent::Show && !m_followsWindow) followWindow();
    return false;
}

void ScreenColorSpaceObserver::followWindow() {
    m_followsWindow = true;
    connect(m_window.windowHandle(), &QWindow::screenChanged, this, &ScreenColorSpaceObserver::sync);
    sync();
}

void ScreenColorSpaceObserver::sync() {
    if (!m_followsWindow) return;
    const auto* screen = m_window.screen();
    if (!screen) return;
    ++m_question;
    m_reading.cancel();
    const auto index = static_cast<int>(QGuiApplication::screens().indexOf(screen));
    if (auto profile = ColorProfile::fromIcc(m_x11.profile(index))) return adopt(profile);
    askColord(*screen);
}

void ScreenColorSpaceObserver::askColord(const QScreen& screen) {
    m_colord.find(screen.name(), [this, question = m_question](const FileURL& file) {
        if (question != m_question) return;
        if (file.isEmpty()) return adopt(ColorProfile::sRGB());
        m_reading.start(
            [this, file](const std::stop_token&) { return readProfile(m_files, file); },
            [this](const ColorProfilePtr& profile) { adopt(profile ? profile : ColorProfile::sRGB()); });
    });
}

void ScreenColorSpaceObserver::adopt(const ColorProfilePtr& profile) {
    if (DisplayColorSpace::update(profile)) m_onChange();
}

} // namespace kelvara
