#pragma once

#include <string>

namespace kelvara {

/// Keeps the machine from going to sleep by itself, where the system lets a program do that. Main thread;
/// nothing waits.
class SleepInhibitor {
public:
    virtual ~SleepInhibitor() = default;

    /// `reason` is what the system tells the user. Nothing changes while it is held already.
    virtual void hold(const std::string& reason) = 0;
    virtual void release() = 0;
};

} // namespace kelvara
