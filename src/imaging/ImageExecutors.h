#pragma once

#include "async/Executor.h"

namespace kelvara {

/// Where images are made and where they are handed over. All outlive who is given them.
struct ImageExecutors {
    Executor& visible;  ///< Decoding threads, for what somebody is looking at.
    Executor& prefetch; ///< The same threads, for what may be looked at next; see PriorityLanes.
    Executor& main;
};

} // namespace kelvara
