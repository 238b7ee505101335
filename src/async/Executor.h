#pragma once

#include <functional>

namespace kelvara {

/// Runs jobs some time after they are posted, in the order in which they were posted. Thread-safe.
class Executor {
public:
    virtual ~Executor() = default;
    virtual void post(std::function<void()> job) = 0;
};

} // namespace kelvara
