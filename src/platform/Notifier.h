#pragma once

#include <string>

namespace kelvara {

struct Notification {
    std::string title;
    std::string message; ///< Plain text.
    friend bool operator==(const Notification&, const Notification&) = default;
};

/// Tells the user something while they look elsewhere. Main thread; nothing waits.
class Notifier {
public:
    virtual ~Notifier() = default;

    /// Takes the place of the one before. Nothing happens where the desktop shows none.
    virtual void notify(const Notification& notification) = 0;
};

} // namespace kelvara
