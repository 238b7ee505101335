#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace kelvara::bench {

/// `processor` counts the time that all threads, and children that have ended, spent working: fair to work on
/// several cores and little disturbed by what else the machine does.
enum class Clock { wall, processor };

/// Seconds since some start.
inline double now(Clock clock) {
    if (clock == Clock::wall)
        return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
    double sum = 0;
    for (const auto who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        ::getrusage(who, &usage);
        for (const auto& time : {usage.ru_utime, usage.ru_stime})
            sum += static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    }
    return sum;
}

/// Seconds that one call takes.
template <typename Work> double seconds(Work&& work, Clock clock = Clock::wall) {
    const auto start = now(clock);
    work();
    return now(clock) - start;
}

inline double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// How to compare, and how many times the peer's speed ours should have; 0 wants nothing.
struct Terms {
    Clock clock = Clock::wall;
    double leastSpeed = 0;
};

/// Runs ours and the peer alternately, so that both see the same machine, and prints the medians and their
/// ratio. `count` is what one run handles, named `unit`.
template <typename Ours, typename Peer>
void compare(const std::string& title, int rounds, double count, const std::string& unit, Ours&& ours,
             const std::string& peerName, Peer&& peer, Terms terms = {}) {
    std::vector<double> oursTimes;
    std::vector<double> peerTimes;
    for (int round = 0; round < rounds; ++round) {
        peerTimes.push_back(seconds(peer, terms.clock));
        oursTimes.push_back(seconds(ours, terms.clock));
    }
    const double ourTime = median(oursTimes);
    const double peerTime = median(peerTimes);
    std::printf("%-44s %9.2f ms (%.3g %s/s)   %s %9.2f ms   time ratio %.2f", title.c_str(), ourTime * 1000,
                count / ourTime, unit.c_str(), peerName.c_str(), peerTime * 1000, ourTime / peerTime);
    if (terms.leastSpeed > 0)
        std::printf("   speed ratio %.2f, wanted %.2f", peerTime / ourTime, terms.leastSpeed);
    std::printf("\n");
    std::fflush(stdout);
}

/// Prints the median time of work that has no peer, and how it scales.
template <typename Work> double report(const std::string& title, int rounds, Work&& work) {
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) times.push_back(seconds(work));
    std::printf("%-44s %9.2f ms\n", title.c_str(), median(times) * 1000);
    std::fflush(stdout);
    return median(times);
}

} // namespace kelvara::bench
