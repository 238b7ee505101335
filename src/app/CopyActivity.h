#pragma once

#include "model/Observable.h"

#include <functional>

namespace kelvara {

class LibraryViewModel;
class Notifier;
class ProgressIndicator;
class SleepInhibitor;
enum class LibraryProperty;

/// Lets the desktop take part in a copy: shows how far it is, keeps the machine awake, and tells a user who
/// looks elsewhere how it ended.
class CopyActivity {
public:
    /// Everything outlives it. `isInFront`: whether the user sees the end in the window.
    CopyActivity(LibraryViewModel& library, ProgressIndicator& indicator, SleepInhibitor& sleep,
                 Notifier& notifier, std::function<bool()> isInFront);
    ~CopyActivity();

private:
    void refresh();
    void end();
    void tellEnd();

    LibraryViewModel& m_library;
    ProgressIndicator& m_indicator;
    SleepInhibitor& m_sleep;
    Notifier& m_notifier;
    std::function<bool()> m_isInFront;
    bool m_isCopying = false;
    Subscription m_subscription;
};

} // namespace kelvara
