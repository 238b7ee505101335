// Copying photos so that they outlast a power cut, against `cp -r` and `sync`: large files, with and without
// verification, small files, shared blocks where the file system has them, and the planning of a second run.
//
//   copy_bench [--folder DIR] [--shared DIR] [--scale FACTOR] [--rounds COUNT]
//
// DIR is where the files go, some 13 GB at full scale. --shared names a folder of a file system that can
// share blocks; without it, root lets a loop device carry one.

#include "bench/Compare.h"
#include "platform/linux/LinuxFileSystem.h"
#include "services/CopyService.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <unistd.h>

using namespace kelvara;

namespace {

namespace fs = std::filesystem;

struct Arguments {
    fs::path folder = fs::temp_directory_path();
    std::optional<fs::path> shared;
    double scale = 1;
    int rounds = 5;
};

void run(const std::string& command) {
    if (std::system(command.c_str()) != 0) std::fprintf(stderr, "failed: %s\n", command.c_str());
}

/// A folder that is gone with all that is in it in the end.
class Scratch {
public:
    explicit Scratch(const fs::path& parent) {
        auto name = (parent / "kelvara-copy-bench-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) std::abort();
        m_path = name;
    }
    ~Scratch() { fs::remove_all(m_path); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    [[nodiscard]] std::string at(const std::string& name) const { return m_path / name; }
    /// For a copy that starts with nothing there and nothing left to write.
    void clear(const std::string& name) const {
        fs::remove_all(m_path / name);
        ::sync();
    }

private:
    fs::path m_path;
};

std::vector<PhotoItem> makePhotos(const std::string& folder, std::size_t count, std::size_t size) {
    fs::create_directories(folder);
    std::vector<char> bytes(size);
    std::mt19937_64 random; // compressible files would make some disks look fast
    for (std::size_t i = 0; i + 8 <= size; i += 8) {
        const auto number = random();
        std::copy_n(reinterpret_cast<const char*>(&number), 8, bytes.data() + i);
    }
    std::vector<PhotoItem> items;
    for (std::size_t i = 0; i < count; ++i) {
        const FileURL url{folder + "/DSC_" + std::to_string(10'000 + i) + ".NEF"};
        const int file = ::open(url.path().c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        static_cast<void>(!::write(file, bytes.data(), size));
        ::close(file);
        items.push_back({url, static_cast<std::int64_t>(size), {}});
    }
    ::sync();
    return items;
}

/// The engine and its peer, each from the same photos to a place of its own.
class Copying {
public:
    Copying(const Scratch& scratch, std::vector<PhotoItem> items)
        : m_scratch{scratch}, m_items{std::move(items)} {}

    /// Takes the photos out of the page cache, where those of a card are not.
    void forget() const {
        for (const auto& item : m_items) {
            const int file = ::open(item.url.path().c_str(), O_RDONLY | O_CLOEXEC);
            ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
            ::close(file);
        }
    }
    double ours(bool verifies) {
        m_scratch.clear("ours");
        const FileURL target{m_scratch.at("ours")};
        return bench::seconds([&] {
            const auto plans =
                m_service.plan({.items = m_items, .destination = target, .source = {}, .verifies = verifies});
            const auto report = m_service.copy(plans.value(), target, {}, {}, [](const auto&) {});
            if (report.copied != std::ssize(m_items)) std::fprintf(stderr, "not everything was copied\n");
        });
    }
    double theirs(const std::string& options = "-r") {
        m_scratch.clear("theirs");
        const auto command = "cp " + options + " " + m_items[0].url.parent().path() + " " +
                             m_scratch.at("theirs") + " && sync";
        return bench::seconds([&] { run(command); });
    }
    double planningAgain() {
        const FileURL target{m_scratch.at("ours")};
        return bench::seconds([&] {
            const auto plans = m_service.plan({.items = m_items, .destination = target, .source = {}});
            for (const auto& plan : plans.value()) {
                if (!std::holds_alternative<CopyService::Plan::SkipExisting>(plan.action)) std::abort();
            }
        });
    }

private:
    const Scratch& m_scratch;
    std::vector<PhotoItem> m_items;
    LinuxFileSystem m_files;
    CopyService m_service{m_files, {}};
};

/// Prints the medians of two kinds of run that take turns, and their ratio.
template <typename First, typename Second> void compare(const std::string& title, int rounds, First&& ours,
                                                        const std::string& peerName, Second&& theirs,
                                                        double mostTime) {
    std::vector<double> oursTimes;
    std::vector<double> theirTimes;
    for (int round = 0; round < rounds; ++round) {
        theirTimes.push_back(theirs());
        oursTimes.push_back(ours());
    }
    const double our = bench::median(oursTimes);
    const double their = bench::median(theirTimes);
    std::printf("%-44s %9.2f ms   %s %9.2f ms   time ratio %.2f, wanted at most %.2f\n", title.c_str(),
                our * 1000, peerName.c_str(), their * 1000, our / their, mostTime);
    std::fflush(stdout);
}

void compareWithSharedBlocks(const fs::path& folder, std::size_t count, int rounds) {
    const Scratch scratch{folder};
    Copying copying{scratch, makePhotos(scratch.at("card"), count, 25'000'000)};
    compare(
        "sharing blocks", rounds, [&] { return copying.ours(false); }, "cp --reflink=always, sync",
        [&] { return copying.theirs("-r --reflink=always"); }, 1.02);
}

/// A file system that shares blocks, on a loop device; mounted where that can be done.
class LoopMount {
public:
    explicit LoopMount(const Scratch& scratch) : m_folder{scratch.at("mounted")} {
        if (::geteuid() != 0) return;
        fs::create_directories(m_folder);
        const auto image = scratch.at("image");
        m_isMounted = std::system(("(truncate -s 6G " + image + " && mkfs.btrfs -q " + image +
                                   " && mount -o loop " + image + " " + m_folder + ") >/dev/null 2>&1")
                                      .c_str()) == 0;
    }
    ~LoopMount() {
        if (m_isMounted) run("umount " + m_folder);
    }
    LoopMount(const LoopMount&) = delete;
    LoopMount& operator=(const LoopMount&) = delete;

    [[nodiscard]] std::optional<fs::path> folder() const {
        return m_isMounted ? std::optional<fs::path>{m_folder} : std::nullopt;
    }

private:
    std::string m_folder;
    bool m_isMounted = false;
};

Arguments parse(int count, char** values) {
    Arguments arguments;
    for (int i = 1; i + 1 < count; i += 2) {
        const std::string name = values[i];
        const std::string value = values[i + 1];
        if (name == "--folder") arguments.folder = value;
        if (name == "--shared") arguments.shared = value;
        if (name == "--scale") arguments.scale = std::stod(value);
        if (name == "--rounds") arguments.rounds = std::stoi(value);
    }
    return arguments;
}

} // namespace

int main(int argumentCount, char** argumentValues) {
    const auto [folder, shared, scale, rounds] = parse(argumentCount, argumentValues);
    const auto scaled = [factor = scale](double count) { return static_cast<std::size_t>(count * factor); };
    const Scratch scratch{folder};
    {
        Copying copying{scratch, makePhotos(scratch.at("card"), scaled(200), 25'000'000)};
        const auto ours = [&] { return copying.ours(false); };
        compare(
            std::to_string(scaled(200)) + " files of 25 MB", rounds, ours, "cp -r, sync",
            [&] { return copying.theirs(); }, 1 / 1.4);
        const auto fromCard = [&](bool verifies) {
            copying.forget();
            return copying.ours(verifies);
        };
        compare(
            "verified, photos not in the cache", rounds, [&] { return fromCard(true); }, "unverified",
            [&] { return fromCard(false); }, 1.6);
        compare(
            "verified, photos in the cache", rounds, [&] { return copying.ours(true); }, "unverified", ours,
            1.6);
        for (const auto* name : {"card", "ours", "theirs"}) scratch.clear(name);
    }
    {
        Copying copying{scratch, makePhotos(scratch.at("card"), scaled(10'000), 100'000)};
        compare(
            std::to_string(scaled(10'000)) + " files of 100 KB", rounds, [&] { return copying.ours(false); },
            "cp -r, sync", [&] { return copying.theirs(); }, 1.3);
        for (const auto* name : {"card", "ours", "theirs"}) scratch.clear(name);
    }
    {
        Copying copying{scratch, makePhotos(scratch.at("card"), 20'000, 1)};
        copying.ours(false);
        bench::report("planning 20,000 files that are there, 500 ms wanted", rounds,
                      [&] { copying.planningAgain(); });
        for (const auto* name : {"card", "ours"}) scratch.clear(name);
    }
    const LoopMount loop{scratch};
    if (const auto place = shared ? shared : loop.folder()) {
        compareWithSharedBlocks(*place, scaled(100), rounds);
    } else {
        std::printf("sharing blocks: skipped, no file system here that does\n");
    }
}
