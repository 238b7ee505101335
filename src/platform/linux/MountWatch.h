#pragma once

#include "platform/linux/FileDescriptor.h"

#include <QObject>
#include <QSocketNotifier>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <utility>

namespace kelvara {

/// Calls back on the main thread after the kernel's mount table has changed.
class MountWatch {
public:
    explicit MountWatch(std::function<void()> onChange)
        : m_table{::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC)} {
        if (!m_table.isOpen()) return;
        // The kernel reports a change as urgent data on the table.
        m_notifier = std::make_unique<QSocketNotifier>(m_table.get(), QSocketNotifier::Exception);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                         std::move(onChange));
    }

private:
    FileDescriptor m_table;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace kelvara
