#pragma once

#include "platform/linux/FileDescriptor.h"

#include <QSocketNotifier>
#include <QTimer>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

namespace kelvara {

/// The kernel's count of how long programs have waited for memory, from one look to the next.
class StallMeter {
public:
    /// Whether more than a thirteenth of the time since the last look was lost. `pressure` is the text of
    /// /proc/pressure/memory; the first look and text that isn't understood tell nothing.
    [[nodiscard]] bool isShort(std::string_view pressure, std::int64_t microsecondsSinceLast);

private:
    std::optional<std::int64_t> m_total;
};

/// Calls back on the main thread every few seconds while the system is short of memory, and afterwards gives
/// what was freed back to it. Where the kernel tells nothing about memory, nothing happens.
class MemoryPressure {
public:
    explicit MemoryPressure(std::function<void()> onShortage,
                            const char* pressureFile = "/proc/pressure/memory");

    /// Whether the kernel calls, which it does at once and for free; if not, it is asked now and then.
    [[nodiscard]] bool isNotified() const { return m_notifier != nullptr; }

private:
    void look();
    void report();

    std::function<void()> m_onShortage;
    FileDescriptor m_file;
    StallMeter m_meter;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_timer;
};

} // namespace kelvara
