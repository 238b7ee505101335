#pragma once

#include "async/Executor.h"
#include "platform/FolderWatch.h"
#include "platform/linux/FileDescriptor.h"

#include <chrono>
#include <memory>
#include <stop_token>
#include <thread>

namespace kelvara {

/// Watches by inotify, on a thread of its own that sleeps while nothing happens. Changes of hidden files do
/// not count. A folder that is missing is told of when it comes, if the one above it is there.
class LinuxFolderWatch : public FolderWatch {
public:
    /// `main` outlives it. Changes are told of after `quiet` without any, or at the latest after eight times
    /// as long.
    explicit LinuxFolderWatch(Executor& main,
                              std::chrono::milliseconds quiet = std::chrono::milliseconds{250});

    void watch(const FileURL& folder, std::function<void()> onChange) override;

private:
    void run(const std::stop_token& stop, const FileURL& folder, const std::function<void()>& tell) const;
    [[nodiscard]] bool waitForChange(const FileDescriptor& watches, std::string_view folderName) const;

    Executor& m_main;
    std::chrono::milliseconds m_quiet;
    FileDescriptor m_wake; // becomes readable when the thread is to end
    /// Expires with the object and with the next `watch`; calls that arrive later do nothing.
    std::shared_ptr<std::function<void()>> m_onChange;
    std::jthread m_thread; // last, so that it ends before what it uses
};

} // namespace kelvara
