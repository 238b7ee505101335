#include "async/PriorityLanes.h"
#include "async/ThreadPool.h"
#include "services/PreviewService.h"
#include "services/ThumbnailService.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <random>
#include <string>

namespace kelvara {
namespace {

/// A main thread's queue, run by the test.
class MainQueue : public Executor {
public:
    void post(std::function<void()> job) override {
        {
            const std::lock_guard lock{m_mutex};
            m_jobs.push_back(std::move(job));
        }
        m_wake.notify_one();
    }

    void waitAndRunOne() {
        std::unique_lock lock{m_mutex};
        m_wake.wait(lock, [this] { return !m_jobs.empty(); });
        run(lock);
    }
    void runWhatIsThere() {
        std::unique_lock lock{m_mutex};
        while (!m_jobs.empty()) run(lock);
    }

private:
    void run(std::unique_lock<std::mutex>& lock) {
        auto job = std::move(m_jobs.front());
        m_jobs.pop_front();
        lock.unlock();
        job();
        job = nullptr;
        lock.lock();
    }

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_jobs;
};

TEST(ImageServicesStressTest, everyRequestThatStaysIsAnsweredOnceAndNoOther) {
    constexpr int steps = 3000;
    std::atomic<int> inside = 0, mostInside = 0;
    const auto make = [](const std::stop_token& stop) -> BitmapPtr {
        if (stop.stop_requested()) return nullptr;
        return Bitmap::create({8, 8}, ColorProfile::sRGB());
    };
    const ThumbnailService::Decoding decoding{
        .thumbnail =
            [&](const FileURL&, int, const std::stop_token& stop) {
                const int now = ++inside;
                for (int seen = mostInside; now > seen && !mostInside.compare_exchange_weak(seen, now);) {
                }
                auto image = make(stop);
                --inside;
                return image;
            },
        .quickThumbnail = [&](const FileURL&, const std::stop_token& stop) { return make(stop); }};
    MainQueue main;
    std::map<int, ImageRequest> requests;
    std::map<int, int> answers;
    ThreadPool pool{4};
    PriorityLanes lanes{pool, 3};
    const ImageExecutors executors{lanes.urgent(), lanes.background(), main};
    ThumbnailService thumbnails{executors, decoding};
    PreviewService previews{executors, thumbnails,
                            [&](const FileURL&, const std::stop_token& stop) { return make(stop); }};
    std::mt19937 random{5};
    for (int i = 0; i < steps; ++i) {
        const FileURL url{"/card/" + std::to_string(random() % 40)};
        const auto answer = [&answers, &requests, i](const BitmapPtr& image) {
            EXPECT_TRUE(image) << "nobody's decode is stopped while somebody waits";
            ++answers[i];
            requests.erase(i);
        };
        switch (random() % 8) {
        case 0:
            thumbnails.prefetch(std::array{url, FileURL{"/card/x"}}, 256);
            break;
        case 1:
            previews.prefetch(url);
            break;
        case 2:
            requests[i] = previews.fullResolution(url, answer);
            break;
        case 3:
            requests[i] = thumbnails.quickThumbnail(url, answer);
            break;
        case 4:
            if (!requests.empty()) {
                const auto gone = requests.begin();
                answers[gone->first] -= 100; // an answer after this would show
                requests.erase(gone);
            }
            break;
        case 5:
            if (random() % 20 == 0) thumbnails.emptyCaches();
            break;
        default:
            requests[i] = thumbnails.thumbnail(url, static_cast<int>(random() % 1200), answer);
            break;
        }
        if (random() % 4 == 0) main.runWhatIsThere();
    }
    while (!requests.empty()) main.waitAndRunOne();
    for (const auto& [request, count] : answers) EXPECT_TRUE(count == 1 || count == -100) << request;
    EXPECT_LE(mostInside, ThumbnailService::cardReadLimit);
}

} // namespace
} // namespace kelvara
