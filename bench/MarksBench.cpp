// Marks and ratings on 100,000 items, and what opening a card costs the main thread: each job there delays
// the next key press and frame.

#include "async/ThreadPool.h"
#include "bench/Compare.h"
#include "bench/Sidecars.h"
#include "library/LibraryViewModel.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxTrash.h"
#include "services/CopyService.h"
#include "services/VolumeService.h"
#include "services/XMPService.h"
#include "tests/support/FakeAnalytics.h"
#include "tests/support/FakeDesktop.h"

#include <condition_variable>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <mutex>

using namespace kelvara;

namespace {

/// The main thread of this program; notes how long its jobs take.
class TimedMainLoop : public Executor {
public:
    void post(std::function<void()> job) override {
        const std::scoped_lock lock{m_mutex};
        m_jobs.push_back(std::move(job));
        m_wake.notify_one();
    }
    template <typename Condition> void runUntil(Condition isDone) {
        while (!isDone()) {
            std::unique_lock lock{m_mutex};
            m_wake.wait(lock, [this] { return !m_jobs.empty(); });
            auto job = std::move(m_jobs.front());
            m_jobs.pop_front();
            lock.unlock();
            run(job);
            run([&] { job = {}; }); // what a job owns goes on this thread too
        }
    }
    template <typename Job> void run(const Job& job) { longest = std::max(longest, bench::seconds(job)); }

    double longest = 0;

private:
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_jobs;
};

/// A card whose photos exist as names only, but whose sidecars can be written.
class NamesOnly : public LinuxFileSystem {
public:
    explicit NamesOnly(std::size_t count) : m_count{count} {}
    Result<void, FileError> walk(const FileURL& folder, FolderWalkVisitor& visitor) const override {
        for (std::size_t i = 0; i < m_count; ++i) {
            const auto shot = i / 2;
            const auto name =
                "DSC_" + std::to_string(10'000 + shot * 7919 % 90'000) + (i % 2 != 0 ? ".JPG" : ".NEF");
            if (visitor.met(name) != FolderWalkVisitor::Answer::describe) continue;
            visitor.described(
                folder.path() + "/" + std::to_string(100 + shot / 1000) + "KELVA", name,
                {FileStatus::Kind::file, static_cast<std::int64_t>(i),
                 FileTime{std::chrono::seconds{static_cast<std::int64_t>(1'700'000'000 + shot)}}});
        }
        return {};
    }
    Result<void, FileError> writeFileAtomically(const FileURL&, std::string_view) override { return {}; }

private:
    std::size_t m_count;
};

/// A library on one source, and all that it needs.
struct Window {
    explicit Window(FileSystem& fileSystem)
        : files{fileSystem}, sidecars{files}, copier{files, {}}, library{{.files = files,
                                                                          .trash = trash,
                                                                          .background = background,
                                                                          .sidecarWrites = sidecarWrites,
                                                                          .main = main,
                                                                          .preferences = preferences,
                                                                          .volumes = volumeService,
                                                                          .sidecars = sidecars,
                                                                          .copier = copier,
                                                                          .folderChooser = chooser,
                                                                          .desktop = desktop,
                                                                          .analytics = analytics,
                                                                          .emptyImageCaches = [] {},
                                                                          .collationLocale = {}}} {}
    void open(const FileURL& source) {
        main.run([&] { library.setSourceURL(source); });
        main.runUntil([&] { return !library.isScanning(); });
    }

    FileSystem& files;
    TimedMainLoop main;
    MemoryPreferences preferences;
    FakeVolumes volumes;
    VolumeService volumeService{volumes};
    XMPService sidecars;
    CopyService copier;
    FakeFolderChooser chooser;
    FakeDesktop desktop;
    LinuxTrash trash;
    FakeAnalytics analytics;
    ThreadPool sidecarWrites{1, ThreadPool::AtEnd::finish};
    ThreadPool background{2};
    LibraryViewModel library;
};

void measureMarks(std::size_t count) {
    std::printf("\n%zu items\n", count);
    NamesOnly files{count};
    Window window{files};
    window.open(FileURL{"/card"});
    auto& library = window.library;
    const FileURL first{library.visibleItems()[0].url};
    const FileURL last{library.visibleItems()[library.visibleItems().size() - 1].url};
    constexpr int rounds = 21;
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) {
        library.clearMarks();
        library.setFocusedID(first);
        times.push_back(bench::seconds([&] { library.markRange(last); }));
    }
    std::printf("%-44s %9.2f ms (at most 20)\n", "  mark all by range", bench::median(times) * 1000);
    bench::report("  mark all by range once more", rounds, [&] {
        library.setFocusedID(first);
        library.markRange(last);
    });
    std::int64_t bytes = 0;
    bench::report("  bytes of all marked", rounds, [&] { bytes += library.checkedBytes(); });
    bench::report("  mark and unmark one", rounds, [&] { library.toggleChecked(last); });
    library.setShowsOnlyChecked(true);
    bench::report("  mark and unmark one, only marked shown", rounds, [&] { library.toggleChecked(last); });
    library.setShowsOnlyChecked(false);
    times.clear();
    for (int round = 0; round < rounds; ++round) {
        library.setFocusedID(first);
        library.markRange(last);
        times.push_back(bench::seconds([&] { library.clearMarks(); }));
    }
    std::printf("%-44s %9.2f ms\n", "  clear all marks", bench::median(times) * 1000);

    int stars = 0;
    const auto rate = [&] { library.setRating(*Rating::fromRawValue(1 + stars++ % 5), first); };
    bench::report("  rate one", rounds, rate);
    library.setRatingFilter(RatingFilter::unrated());
    bench::report("  rate one, unrated shown", rounds, rate);
}

void measureOpening(std::size_t count) {
    auto name = (std::filesystem::temp_directory_path() / "kelvara-marks-bench-XXXXXX").string();
    const FileURL top{::mkdtemp(name.data())};
    const auto sidecar = bench::sidecarText(4);
    for (std::size_t i = 0; i < count; ++i) {
        const auto stem = top.path() + "/DSC_" + std::to_string(10'000 + i);
        std::ofstream{stem + ".NEF"};
        std::ofstream{stem + ".xmp"} << sidecar;
    }
    std::printf("\nopening a card of %zu RAW files with sidecars\n", count);
    LinuxFileSystem files;
    std::vector<double> longest;
    bench::report("  until its photos are shown", 7, [&] {
        Window window{files};
        window.open(top);
        longest.push_back(window.main.longest);
    });
    std::printf("%-44s %9.2f ms (at most 16)\n", "  longest job on the main thread, median",
                bench::median(longest) * 1000);
    std::printf("%-44s %9.2f ms\n", "  longest job on the main thread, worst",
                *std::max_element(longest.begin(), longest.end()) * 1000);
    std::filesystem::remove_all(top.path());
}

} // namespace

int main() {
    measureMarks(100'000);
    measureOpening(20'000);
}
