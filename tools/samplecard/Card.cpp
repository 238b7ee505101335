#include "samplecard/Card.h"

#include "samplecard/BenchmarkPhotos.h"
#include "samplecard/CardClutter.h"
#include "samplecard/CardPhotos.h"

#include <exception>
#include <fmt/format.h>
#include <fstream>
#include <iterator>

namespace kelvara::samplecard {
namespace {

// To be raised with every change to what the tool writes, so that old cards are written anew.
constexpr int cardVersion = 2;
constexpr const char* markerName = ".kelvara-sample";
constexpr const char* unfinished = "unfinished\n";

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file{path, std::ios::binary};
    return {std::istreambuf_iterator<char>{file}, {}};
}

template <typename Jobs>
Result<CardSummary, CardError> write(const std::filesystem::path& folder, const std::string& description,
                                     unsigned threads, const CardProgress& progress, Jobs makeJobs) {
    try {
        std::filesystem::create_directories(folder);
        // A card whose writing was interrupted must not pass for a whole one.
        writeFile(folder, {markerName, unfinished, 0, false});
        CardSummary summary = writeFiles(folder, makeJobs(), threads, progress);
        writeFile(folder, {markerName, description, 0, false});
        return summary;
    } catch (const std::exception& error) {
        return Failure{CardError{fmt::format("The card could not be written: {}", error.what())}};
    }
}

} // namespace

FolderState stateOf(const std::filesystem::path& folder, const std::string& description) {
    std::error_code error;
    if (!std::filesystem::exists(folder, error)) return FolderState::free;
    if (!std::filesystem::is_directory(folder, error)) return FolderState::foreign;
    const std::filesystem::path marker = folder / markerName;
    if (std::filesystem::exists(marker, error))
        return contentOf(marker) == description ? FolderState::complete : FolderState::own;
    const std::filesystem::directory_iterator entries{folder, error};
    return !error && entries == std::filesystem::directory_iterator{} ? FolderState::free
                                                                      : FolderState::foreign;
}

std::string describe(const CardOptions& options) {
    return fmt::format("kelvara sample card, version {}, scale {}\n", cardVersion, options.scale);
}

std::string describe(const BenchmarkOptions& options) {
    return fmt::format("kelvara benchmark card, version {}, {} photos of {} megapixels, kind {}\n",
                       cardVersion, options.photos, options.megapixels, static_cast<int>(options.kind));
}

Result<CardSummary, CardError> writeCard(const std::filesystem::path& folder, const CardOptions& options,
                                         const CardProgress& progress) {
    return write(folder, describe(options), options.threads, progress, [&] {
        std::vector<CardJob> jobs = photoJobs(options.scale);
        for (CardJob& job : clutterJobs(options.scale)) jobs.push_back(std::move(job));
        return jobs;
    });
}

Result<CardSummary, CardError> writeBenchmarkCard(const std::filesystem::path& folder,
                                                  const BenchmarkOptions& options,
                                                  const CardProgress& progress) {
    return write(folder, describe(options), options.threads, progress,
                 [&] { return benchmarkJobs(options); });
}

} // namespace kelvara::samplecard
