#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

namespace kelvara::bench {

/// Seconds that one call takes.
template <typename Work> double seconds(Work&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Runs ours and the peer alternately, so that both see the same machine, and prints the medians and their
/// ratio. `count` is what one run handles, named `unit`.
template <typename Ours, typename Peer> void compare(const std::string& title, int rounds, double count,
                                                     const std::string& unit, Ours&& ours,
                                                     const std::string& peerName, Peer&& peer) {
    std::vector<double> oursTimes;
    std::vector<double> peerTimes;
    for (int round = 0; round < rounds; ++round) {
        peerTimes.push_back(seconds(peer));
        oursTimes.push_back(seconds(ours));
    }
    const double ourTime = median(oursTimes);
    const double peerTime = median(peerTimes);
    std::printf("%-44s %9.2f ms (%.3g %s/s)   %s %9.2f ms   time ratio %.2f\n", title.c_str(), ourTime * 1000,
                count / ourTime, unit.c_str(), peerName.c_str(), peerTime * 1000, ourTime / peerTime);
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
