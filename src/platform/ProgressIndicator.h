#pragma once

namespace kelvara {

/// How far a long job has come, on the application's icon where the desktop shows it there. Main thread;
/// nothing waits.
class ProgressIndicator {
public:
    virtual ~ProgressIndicator() = default;

    /// `share` of the job that is done, 0 to 1.
    virtual void show(double share) = 0;
    virtual void hide() = 0;
};

} // namespace kelvara
