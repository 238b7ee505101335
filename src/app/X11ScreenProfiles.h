#pragma once

#include <QAbstractNativeEventFilter>

#include <cstdint>
#include <functional>
#include <vector>

struct xcb_connection_t;

namespace kelvara {

/// The ICC profiles that the desktop puts on the X root window (freedesktop.org, "ICC Profiles in X
/// Specification", 0.4): "_ICC_PROFILE" for the first screen, "_ICC_PROFILE_1" and so on for the others.
/// Does nothing on other window systems. Main thread.
class X11ScreenProfiles : public QAbstractNativeEventFilter {
public:
    /// `onChange` is called when any screen's profile changed.
    explicit X11ScreenProfiles(std::function<void()> onChange);
    ~X11ScreenProfiles() override;

    /// Of the screen with this place in the list of screens; empty when it has none.
    [[nodiscard]] std::vector<std::uint8_t> profile(int screen) const;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    static constexpr int mostScreens = 16;
    /// Null where there is no X server.
    [[nodiscard]] static xcb_connection_t* server();

    std::function<void()> m_onChange;
    std::vector<std::uint32_t> m_atoms; // by screen
};

} // namespace kelvara
