#include "bench/MinimalWalk.h"

#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <strings.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace kelvara::bench {

namespace {

struct Entry {
    std::uint64_t inode;
    std::int64_t offset;
    unsigned short length;
    unsigned char type;
    char name[1];
};

bool isMedia(const char* name) {
    const char* dot = std::strrchr(name, '.');
    return dot != nullptr && (::strcasecmp(dot, ".jpg") == 0 || ::strcasecmp(dot, ".nef") == 0);
}

void walk(int folder, MinimalWalkResult& result) {
    char buffer[64 * 1024];
    for (;;) {
        const long bytes = ::syscall(SYS_getdents64, folder, buffer, sizeof buffer);
        if (bytes <= 0) break;
        for (long at = 0; at < bytes;) {
            const auto* entry = reinterpret_cast<const Entry*>(buffer + at);
            at += entry->length;
            if (entry->name[0] == '.') continue;
            ++result.entries;
            if (entry->type == DT_DIR) {
                const int child = ::openat(folder, entry->name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
                if (child >= 0) {
                    walk(child, result);
                    ::close(child);
                }
            } else if (isMedia(entry->name)) {
                struct statx values {};
                if (::statx(folder, entry->name, AT_SYMLINK_NOFOLLOW,
                            STATX_TYPE | STATX_SIZE | STATX_MTIME | STATX_BTIME, &values) == 0) {
                    ++result.mediaFiles;
                    result.bytes += static_cast<std::int64_t>(values.stx_size);
                }
            }
        }
    }
}

} // namespace

MinimalWalkResult minimalWalk(const char* folder) {
    MinimalWalkResult result;
    const int top = ::open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (top < 0) return result;
    walk(top, result);
    ::close(top);
    return result;
}

} // namespace kelvara::bench
