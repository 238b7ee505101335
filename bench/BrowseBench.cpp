// What browsing asks of the image services: look-ups, a visible photo among thousands fetched ahead, and the
// memory that two thousand files of 24 megapixels take.

#include "async/PriorityLanes.h"
#include "async/ThreadPool.h"
#include "bench/Compare.h"
#include "bench/Photos.h"
#include "services/PreviewService.h"
#include "services/ThumbnailService.h"

#include <atomic>
#include <cmath>
#include <fstream>
#include <latch>
#include <semaphore>
#include <unistd.h>

using namespace kelvara;

namespace {

/// The threads of the application, whose main one only hands results over.
struct Threads {
    ThreadPool main{1};
    ThreadPool pool{2};
    PriorityLanes lanes{pool, 1};
    ImageExecutors executors{lanes.urgent(), lanes.background(), main};
};

std::vector<FileURL> names(int count) {
    std::vector<FileURL> urls;
    for (int i = 0; i < count; ++i)
        urls.emplace_back("/media/card/DCIM/100KELVA/KEL_" + std::to_string(10'000 + i) + ".JPG");
    return urls;
}

void measureHits() {
    Threads threads;
    const auto urls = names(2000);
    const auto decode = [](const FileURL&, int, const std::stop_token&) -> BitmapPtr {
        return Bitmap::create({256, 170}, ColorProfile::sRGB());
    };
    ThumbnailService service{threads.executors, {.thumbnail = decode, .quickThumbnail = {}}};
    std::latch all{static_cast<std::ptrdiff_t>(urls.size())};
    std::vector<ImageRequest> requests;
    for (const auto& url : urls)
        requests.push_back(service.thumbnail(url, 256, [&all](const BitmapPtr&) { all.count_down(); }));
    all.wait();
    std::size_t found = 0;
    constexpr int rounds = 200;
    const auto time = bench::seconds([&] {
        for (int round = 0; round < rounds; ++round)
            for (const auto& url : urls) found += service.cachedThumbnail(url, 256) ? 1U : 0U;
    });
    std::printf("look-up among %zu cached thumbnails: %.0f ns, wanted 1000; %.0f %% found\n", urls.size(),
                time * 1e9 / static_cast<double>(urls.size()) / rounds,
                100.0 * static_cast<double>(found) / static_cast<double>(urls.size()) / rounds);
    threads.pool.end();
    threads.main.end();
}

/// Both slots are taken by prefetches, which are let go only when the visible request has been made.
void measureOvertaking() {
    Threads threads;
    const auto urls = names(10'000);
    const FileURL visible{"/media/card/visible.JPG"};
    std::counting_semaphore<> go{0};
    std::binary_semaphore started{0}, begun{0};
    std::atomic<int> before = 0;
    double end = 0;
    const auto decode = [&](const FileURL& url, int, const std::stop_token&) -> BitmapPtr {
        if (url == visible) {
            end = bench::now(bench::Clock::wall);
            begun.release();
        } else if (before++ == 0) {
            started.release();
            go.acquire();
        }
        return nullptr;
    };
    ThumbnailService service{threads.executors, {.thumbnail = decode, .quickThumbnail = {}}};
    const auto queueing = bench::seconds([&] { service.prefetch(urls, 256); });
    started.acquire();
    const auto start = bench::now(bench::Clock::wall);
    const auto request = service.thumbnail(visible, 256, [](const BitmapPtr&) {});
    begun.acquire();
    std::printf(
        "visible photo after %zu queued prefetches (%.1f ms): begun after %.3f ms, %d begun before it\n",
        urls.size(), queueing * 1e3, (end - start) * 1e3, before.load());
    go.release();
    threads.pool.end();
    threads.main.end();
}

/// Megabytes, of 1,048,576 bytes.
double peakMemory() {
    std::ifstream status{"/proc/self/status"};
    for (std::string word; status >> word;) {
        double kilobytes = 0;
        if (word == "VmHWM:" && status >> kilobytes) return kilobytes / 1024;
    }
    return 0;
}

/// Many names for a few files.
class LinkedFiles {
public:
    LinkedFiles(const std::vector<FileURL>& files, int count) {
        m_folder = std::filesystem::path{files.front().path()}.parent_path().parent_path() / "links";
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directories(m_folder);
        for (int i = 0; i < count; ++i) {
            const std::filesystem::path from{files[static_cast<std::size_t>(i) % files.size()].path()};
            const auto to = m_folder / (std::to_string(i) + from.extension().string());
            std::filesystem::create_hard_link(from, to);
            urls.emplace_back(to.string());
        }
    }
    ~LinkedFiles() { std::filesystem::remove_all(m_folder); }

    std::vector<FileURL> urls;

private:
    std::filesystem::path m_folder;
};

/// Row after row of thumbnails with the next ones fetched ahead, and every tenth photo in full resolution.
void measureMemory(int count) {
    const LinkedFiles files{bench::photos(bench::PhotoKind::jpeg, 12), count};
    Threads threads;
    ThumbnailService thumbnails{threads.executors};
    PreviewService previews{threads.executors, thumbnails};
    constexpr std::size_t rowLength = 10;
    int missing = 0;
    const auto time = bench::seconds([&] {
        for (std::size_t row = 0; row < files.urls.size(); row += rowLength) {
            const auto end = std::min(row + rowLength, files.urls.size());
            std::latch all{static_cast<std::ptrdiff_t>(end - row + 1)};
            const auto arrived = [&](const BitmapPtr& image) {
                if (!image) ++missing;
                all.count_down();
            };
            std::vector<ImageRequest> requests;
            for (auto i = row; i < end; ++i)
                requests.push_back(thumbnails.thumbnail(files.urls[i], 512, arrived));
            requests.push_back(previews.fullResolution(files.urls[row], arrived));
            if (end < files.urls.size()) previews.prefetch(files.urls[end]);
            all.wait();
        }
    });
    constexpr double megabyte = 1024 * 1024;
    constexpr double limits = (ThumbnailService::cacheBytes + PreviewService::cacheBytes) / megabyte;
    std::printf(
        "browsed %zu files in %.0f s, %d without an image: peak %.0f MB, wanted %.0f (caches %.0f + 200)\n",
        files.urls.size(), time, missing, peakMemory(), limits + 200, limits);
    threads.pool.end();
    threads.main.end();
}

} // namespace

int main(int argumentCount, char** argumentValues) {
    measureHits();
    measureOvertaking();
    measureMemory(argumentCount > 1 ? std::atoi(argumentValues[1]) : 2000);
}
