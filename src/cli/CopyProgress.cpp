#include "cli/CopyProgress.h"

#include "text/ByteCount.h"

#include <fmt/format.h>

namespace kelvara::cli {

namespace {

constexpr std::chrono::seconds recentTime{10};

double part(const CopyService::Progress& progress) {
    // Files of no bytes at all still make progress.
    const auto [done, total] = progress.totalBytes > 0
                                   ? std::pair{progress.completedBytes, progress.totalBytes}
                                   : std::pair{progress.completedFiles, progress.totalFiles};
    return total > 0 ? static_cast<double>(done) / static_cast<double>(total) : 1;
}

std::string durationText(double seconds) {
    const auto whole = static_cast<std::int64_t>(seconds + 0.5);
    if (whole < 3600) return fmt::format("{}:{:02}", whole / 60, whole % 60);
    return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

} // namespace

std::string CopyProgress::line(const CopyService::Progress& progress, Time now) {
    m_recent.push_back({now, progress.completedBytes});
    while (now - m_recent.front().time > recentTime) m_recent.pop_front();

    constexpr int width = 20;
    const double done = part(progress);
    const int filled = static_cast<int>(done * width);
    auto text = fmt::format("[{:#<{}}{:-<{}}] {:3} %  {} of {} files", "", filled, "", width - filled,
                            static_cast<int>(done * 100), progress.completedFiles, progress.totalFiles);

    const double seconds = std::chrono::duration<double>{now - m_recent.front().time}.count();
    const auto bytes = static_cast<double>(progress.completedBytes - m_recent.front().bytes);
    if (seconds < 1 || bytes <= 0) return text;
    const double rate = bytes / seconds;
    const auto left = static_cast<double>(progress.totalBytes - progress.completedBytes) / rate;
    constexpr double longest = 100 * 3600; // more is no forecast
    text += fmt::format("  {}/s", byteCountText(static_cast<std::int64_t>(rate)));
    if (left < longest) text += fmt::format("  {} left", durationText(left));
    return text;
}

} // namespace kelvara::cli
