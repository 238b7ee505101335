#pragma once

#include "services/CopyService.h"

#include <chrono>
#include <deque>
#include <string>

namespace kelvara::cli {

/// What a terminal shows while files are copied: a bar, and how fast it moves.
class CopyProgress {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// "[#####---------------]  25 %  12 of 48 files  120 MB/s  1:05 left"; rate and time are of the last few
    /// seconds, and left out until there is something to tell them by.
    [[nodiscard]] std::string line(const CopyService::Progress& progress, Time now);

private:
    struct Sample {
        Time time;
        std::int64_t bytes;
    };
    std::deque<Sample> m_recent;
};

} // namespace kelvara::cli
