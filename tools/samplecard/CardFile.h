#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace kelvara::samplecard {

struct CardFile {
    std::string path; ///< below the card's root; bytes, not necessarily UTF-8
    std::string bytes;
    std::int64_t time = 0;   ///< becomes the modification time, seconds since 1970
    bool isOptional = false; ///< left out where the file system refuses the name
};

/// Makes one or more files; runs on any thread.
using CardJob = std::function<std::vector<CardFile>()>;

/// Called with the number of finished and of all jobs, one call at a time but on any thread.
using CardProgress = std::function<void(std::size_t done, std::size_t all)>;

struct CardSummary {
    std::size_t files = 0;
    std::uintmax_t bytes = 0;
};

/// Writes one file with its folders and its time; false when the name is optional and was refused.
/// Throws std::system_error.
bool writeFile(const std::filesystem::path& root, const CardFile& file);

/// Runs the jobs on `threads` threads (0: one a core) and writes what they make below `root`. Throws what the
/// first failing job threw, after all threads have ended.
CardSummary writeFiles(const std::filesystem::path& root, const std::vector<CardJob>& jobs, unsigned threads,
                       const CardProgress& progress);

} // namespace kelvara::samplecard
