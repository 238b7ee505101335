#pragma once

#include <QPointer>
#include <QUrl>

#include <array>

class QWidget;

namespace kelvara {

class Settings;
class SideWindow;

/// The windows beside the main one: at most one of each, made when it is first shown.
class SideWindows {
public:
    enum class Identifier { about, settings, shortcuts, support, count };

    /// `settings` outlives it; an empty `donationAddress` means that there is none.
    SideWindows(Settings& settings, QUrl donationAddress);

    /// Brings the window to the front. It belongs to `mainWindow` and goes with it.
    void show(Identifier identifier, QWidget& mainWindow);

private:
    [[nodiscard]] SideWindow* make(Identifier identifier, QWidget& mainWindow) const;

    Settings& m_settings;
    QUrl m_donationAddress;
    std::array<QPointer<SideWindow>, static_cast<std::size_t>(Identifier::count)> m_windows;
};

} // namespace kelvara
