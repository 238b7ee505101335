#include "platform/linux/FileTimes.h"

#include <algorithm>

namespace kelvara {

namespace {

FileTime fileTime(const struct statx_timestamp& time) {
    // A broken file system may hold any 64-bit second; what microseconds can't hold is clamped.
    constexpr std::int64_t limit = 9'000'000'000'000;
    const std::int64_t seconds = std::clamp<std::int64_t>(time.tv_sec, -limit, limit);
    return FileTime{std::chrono::microseconds{seconds * 1'000'000 + time.tv_nsec / 1000}};
}

} // namespace

FileStatus fileStatus(const struct statx& values) {
    FileStatus status;
    if (S_ISREG(values.stx_mode)) status.kind = FileStatus::Kind::file;
    if (S_ISDIR(values.stx_mode)) status.kind = FileStatus::Kind::folder;
    status.size = static_cast<std::int64_t>(values.stx_size);
    if (values.stx_mask & STATX_MTIME) status.creationDate = fileTime(values.stx_mtime);
    if (values.stx_mask & STATX_BTIME) {
        const auto birth = fileTime(values.stx_btime);
        // A copied file was born when it was copied, but keeps the time at which the camera wrote it; an
        // edited file keeps its older birth. The earlier of the two is the closest to the capture either way.
        status.creationDate = status.creationDate ? std::min(*status.creationDate, birth) : birth;
    }
    return status;
}

} // namespace kelvara
