#include "bench/Photos.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace kelvara::bench {
namespace {

pid_t launch(std::vector<std::string> arguments) {
    std::vector<char*> pointers;
    for (auto& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO})
        ::posix_spawn_file_actions_addopen(&actions, descriptor, "/dev/null", O_WRONLY, 0);
    pid_t child = -1;
    if (::posix_spawnp(&child, pointers[0], &actions, nullptr, pointers.data(), environ) != 0) child = -1;
    ::posix_spawn_file_actions_destroy(&actions);
    return child;
}

bool hasSucceeded(pid_t child) {
    int status = -1;
    return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) &&
           WEXITSTATUS(status) == 0;
}

} // namespace

std::vector<FileURL> photos(PhotoKind kind, int count) {
    const samplecard::BenchmarkOptions options{.photos = count, .megapixels = 24, .kind = kind, .threads = 0};
    const auto folder =
        std::filesystem::absolute("build/bench-photos") / std::to_string(static_cast<int>(kind));
    if (samplecard::stateOf(folder, samplecard::describe(options)) != samplecard::FolderState::complete) {
        std::filesystem::remove_all(folder);
        if (!samplecard::writeBenchmarkCard(folder, options)) {
            std::fprintf(stderr, "no photos could be written to %s\n", folder.c_str());
            std::exit(1);
        }
    }
    std::vector<FileURL> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator{folder / "DCIM"})
        if (entry.is_regular_file()) files.emplace_back(entry.path().string());
    std::ranges::sort(files, {}, &FileURL::path);
    return files;
}

void onBothCores(const std::vector<FileURL>& files, const std::function<void(const FileURL&)>& work) {
    std::atomic<std::size_t> next = 0;
    std::vector<std::jthread> threads;
    for (int i = 0; i < 2; ++i)
        threads.emplace_back([&] {
            for (std::size_t at = next++; at < files.size(); at = next++) work(files[at]);
        });
}

bool runOnBothCores(const std::vector<std::string>& command, const std::vector<FileURL>& files) {
    std::vector<std::vector<std::string>> halves(files.size() > 1 ? 2 : 1, command);
    for (std::size_t i = 0; i < files.size(); ++i) halves[i % halves.size()].push_back(files[i].path());
    std::vector<pid_t> children;
    for (auto& half : halves) children.push_back(launch(std::move(half)));
    return std::ranges::count_if(children, hasSucceeded) == static_cast<std::ptrdiff_t>(children.size());
}

std::uint64_t bytesRead() {
    std::ifstream counters{"/proc/self/io"};
    std::string name;
    std::uint64_t value = 0;
    counters >> name >> value; // "rchar: 123"
    return value;
}

} // namespace kelvara::bench
