#include "samplecard/CardFile.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <exception>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace kelvara::samplecard {
namespace {

[[noreturn]] void fail(const std::filesystem::path& path) {
    throw std::system_error{errno, std::generic_category(), path.string()};
}

bool refusesName(int error) { return error == EILSEQ || error == EINVAL || error == EPERM; }

void writeAll(int file, const CardFile& content, const std::filesystem::path& path) {
    for (std::size_t done = 0; done < content.bytes.size();) {
        const ssize_t count = ::write(file, content.bytes.data() + done, content.bytes.size() - done);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) fail(path);
        done += static_cast<std::size_t>(count);
    }
    const timespec time{content.time, 0};
    const timespec times[2] = {time, time};
    if (::futimens(file, times) != 0) fail(path);
}

} // namespace

bool writeFile(const std::filesystem::path& root, const CardFile& content) {
    const std::filesystem::path path = root / content.path;
    std::filesystem::create_directories(path.parent_path());
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file < 0) {
        if (content.isOptional && refusesName(errno)) return false;
        fail(path);
    }
    try {
        writeAll(file, content, path);
    } catch (...) {
        ::close(file);
        throw;
    }
    if (::close(file) != 0) fail(path);
    return true;
}

CardSummary writeFiles(const std::filesystem::path& root, const std::vector<CardJob>& jobs, unsigned threads,
                       const CardProgress& progress) {
    if (threads == 0) threads = std::max(1U, std::thread::hardware_concurrency());
    std::atomic<std::size_t> next{0};
    std::mutex mutex; // guards what follows
    CardSummary summary;
    std::size_t done = 0;
    std::exception_ptr failure;

    const auto work = [&] {
        for (std::size_t index = next++; index < jobs.size(); index = next++) {
            try {
                CardSummary written;
                for (const CardFile& file : jobs[index]()) {
                    if (!writeFile(root, file)) continue;
                    ++written.files;
                    written.bytes += file.bytes.size();
                }
                const std::lock_guard lock{mutex};
                summary.files += written.files;
                summary.bytes += written.bytes;
                if (progress) progress(++done, jobs.size());
            } catch (...) {
                const std::lock_guard lock{mutex};
                if (!failure) failure = std::current_exception();
                next = jobs.size();
            }
        }
    };
    {
        std::vector<std::jthread> workers;
        for (unsigned i = 1; i < threads; ++i) workers.emplace_back(work);
        work();
    }
    if (failure) std::rethrow_exception(failure);
    return summary;
}

} // namespace kelvara::samplecard
