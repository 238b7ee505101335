#include "platform/linux/LinuxFolderWatch.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <optional>
#include <poll.h>
#include <string_view>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <utility>

namespace kelvara {

namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t namesChange = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ONLYDIR;
constexpr std::uint32_t anyChange = namesChange | IN_CLOSE_WRITE | IN_DELETE_SELF | IN_MOVE_SELF;

/// The first watch of every queue is the one on the folder above.
constexpr int watchAbove = 1;

/// Watches on a folder, on all below it, and on the one above, in which it may come and go. The whole is made
/// anew after each change: that is how folders that came and went are followed.
FileDescriptor watchesOf(const FileURL& folder, const std::stop_token& stop) {
    FileDescriptor watches{::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)};
    if (!watches.isOpen()) return watches;
    // Every queue counts its watches from 1.
    if (::inotify_add_watch(watches.get(), folder.parent().path().c_str(), namesChange) != watchAbove) {
        return FileDescriptor{-1};
    }
    if (::inotify_add_watch(watches.get(), folder.path().c_str(), anyChange) < 0) return watches;

    std::error_code error;
    fs::recursive_directory_iterator entry{folder.path(), fs::directory_options::skip_permission_denied,
                                           error};
    for (; !error && entry != fs::recursive_directory_iterator{}; entry.increment(error)) {
        if (stop.stop_requested()) break;
        std::error_code ignored;
        const auto isFolder = !entry->is_symlink(ignored) && entry->is_directory(ignored);
        if (!isFolder) continue;
        if (entry->path().filename().native().starts_with('.')) {
            entry.disable_recursion_pending();
            continue;
        }
        // Before it is listed, so that what comes into it in between is an event.
        ::inotify_add_watch(watches.get(), entry->path().c_str(), anyChange | IN_DONT_FOLLOW);
    }
    return watches;
}

/// Takes all events off the queue; whether one of them counts.
bool takeEvents(const FileDescriptor& watches, std::string_view folderName) {
    alignas(inotify_event) std::array<char, 16 * 1024> buffer{};
    bool counts = false;
    for (;;) {
        const auto length = ::read(watches.get(), buffer.data(), buffer.size());
        if (length <= 0) return counts;
        for (std::size_t at = 0; at < static_cast<std::size_t>(length);) {
            inotify_event event{};
            std::memcpy(&event, buffer.data() + at, sizeof event);
            const std::string_view name{event.len > 0 ? buffer.data() + at + sizeof event : ""};
            counts |= event.wd == watchAbove ? name == folderName : !name.starts_with('.');
            at += sizeof event + event.len;
        }
    }
}

} // namespace

LinuxFolderWatch::LinuxFolderWatch(Executor& main, std::chrono::milliseconds quiet)
    : m_main{main}, m_quiet{quiet}, m_wake{-1} {}

void LinuxFolderWatch::watch(const FileURL& folder, std::function<void()> onChange) {
    m_thread = {}; // waits for the one before
    m_wake = FileDescriptor{::eventfd(0, EFD_CLOEXEC)};
    m_onChange = std::make_shared<std::function<void()>>(std::move(onChange));
    const auto tell = [this, weak = std::weak_ptr{m_onChange}] {
        m_main.post([weak] {
            if (const auto call = weak.lock()) (*call)();
        });
    };
    m_thread = std::jthread{[this, folder, tell](const std::stop_token& stop) { run(stop, folder, tell); }};
}

void LinuxFolderWatch::run(const std::stop_token& stop, const FileURL& folder,
                           const std::function<void()>& tell) const {
    const std::stop_callback wake{stop, [this] { ::eventfd_write(m_wake.get(), 1); }};
    auto watches = watchesOf(folder, stop);
    tell();
    while (watches.isOpen() && waitForChange(watches, folder.name())) {
        watches = watchesOf(folder, stop);
        if (!stop.stop_requested()) tell();
    }
}

bool LinuxFolderWatch::waitForChange(const FileDescriptor& watches, std::string_view folderName) const {
    using Clock = std::chrono::steady_clock;
    std::array<pollfd, 2> sources{pollfd{watches.get(), POLLIN, 0}, pollfd{m_wake.get(), POLLIN, 0}};
    std::optional<Clock::time_point> latest; // once there was a change
    for (;;) {
        int timeout = -1;
        if (latest) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(*latest - Clock::now());
            if (left.count() <= 0) return true;
            timeout = static_cast<int>(std::min(left, m_quiet).count());
        }
        const auto ready = ::poll(sources.data(), sources.size(), timeout);
        if (ready < 0 && errno != EINTR) return false;
        if (ready == 0) return true;
        if (sources[1].revents != 0) return false;
        if (takeEvents(watches, folderName) && !latest) latest = Clock::now() + 8 * m_quiet;
    }
}

} // namespace kelvara
