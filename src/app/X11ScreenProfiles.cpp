#include "app/X11ScreenProfiles.h"

#include <QGuiApplication>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <xcb/xcb.h>

namespace kelvara {

namespace {

/// Large table profiles take some megabytes; the property's length counts units of four bytes.
constexpr std::uint32_t mostUnits = (std::uint32_t{16} << 20) / 4;

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename T> using Reply = std::unique_ptr<T, Free>;

/// The window that carries the properties. Programs other than window managers have one X screen.
xcb_window_t rootWindow(xcb_connection_t* server) {
    return xcb_setup_roots_iterator(xcb_get_setup(server)).data->root;
}

xcb_atom_t atom(xcb_connection_t* server, const std::string& name) {
    const auto cookie = xcb_intern_atom(server, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const Reply<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(server, cookie, nullptr)};
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

} // namespace

xcb_connection_t* X11ScreenProfiles::server() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

X11ScreenProfiles::X11ScreenProfiles(std::function<void()> onChange) : m_onChange{std::move(onChange)} {
    auto* connection = server();
    if (!connection) return;
    const std::string name = "_ICC_PROFILE";
    for (int screen = 0; screen < mostScreens; ++screen)
        m_atoms.push_back(atom(connection, screen == 0 ? name : name + '_' + std::to_string(screen)));
    // Qt itself listens to the root window's properties, so the notices arrive here.
    qGuiApp->installNativeEventFilter(this);
}

X11ScreenProfiles::~X11ScreenProfiles() { qGuiApp->removeNativeEventFilter(this); }

std::vector<std::uint8_t> X11ScreenProfiles::profile(int screen) const {
    auto* connection = server();
    const auto index = static_cast<std::size_t>(screen);
    if (!connection || index >= m_atoms.size()) return {};
    const auto cookie = xcb_get_property(connection, 0, rootWindow(connection), m_atoms[index],
                                         XCB_ATOM_CARDINAL, 0, mostUnits);
    const Reply<xcb_get_property_reply_t> reply{xcb_get_property_reply(connection, cookie, nullptr)};
    if (!reply || reply->format != 8 || reply->bytes_after > 0) return {};
    const auto* bytes = static_cast<const std::uint8_t*>(xcb_get_property_value(reply.get()));
    return {bytes, bytes + xcb_get_property_value_length(reply.get())};
}

bool X11ScreenProfiles::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t") return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    constexpr unsigned isSent = 0x80; // set for events that another program made
    if ((event->response_type & ~isSent) != XCB_PROPERTY_NOTIFY) return false;
    const auto* notice = static_cast<const xcb_property_notify_event_t*>(message);
    if (std::ranges::find(m_atoms, notice->atom) != m_atoms.end()) m_onChange();
    return false;
}

} // namespace kelvara
