#include "async/ThreadPool.h"
#include "presets/DrawingTest.h"
#include "support/ManualExecutor.h"

#include <gtest/gtest.h>

#include <latch>
#include <mutex>

namespace kelvara {
namespace {

using namespace drawing;

class PresetRendererTest : public testing::Test {
protected:
    ImageRequest render(const DevelopPreset& wanted) {
        return renderer.render(wanted, url, image, [this](BitmapPtr result) {
            ++answers;
            last = std::move(result);
        });
    }

    ManualExecutor rendering, main;
    PresetRenderer renderer{rendering, main};
    const FileURL url{"/card/A.JPG"};
    const BitmapPtr image = mixedPicture({64, 48});
    BitmapPtr last;
    int answers = 0;
};

TEST_F(PresetRendererTest, drawsOnceAndRemembersByPhotoPictureAndRevision) {
    const auto wanted = preset(strongColors());
    EXPECT_EQ(renderer.cached(wanted, url, image), nullptr);
    const auto first = render(wanted), second = render(wanted);
    EXPECT_EQ(answers, 0);
    EXPECT_EQ(rendering.pending(), 1U);
    runAll(rendering, main);
    EXPECT_EQ(answers, 2);
    ASSERT_NE(last, nullptr);
    EXPECT_NE(last, image);
    EXPECT_EQ(renderer.cached(wanted, url, image), last);
    EXPECT_EQ(renderer.cached(wanted, FileURL{"/card/B.JPG"}, image), nullptr);
    EXPECT_EQ(renderer.cached(wanted, url, mixedPicture({64, 47})), nullptr);
    EXPECT_EQ(
        renderer.cached(wanted, url, mixedPicture({64, 48}, PixelFormat::bgrx8, ColorProfile::displayP3())),
        nullptr);
    EXPECT_EQ(renderer.cached(preset(strongColors()), url, image), nullptr); // another revision
    EXPECT_EQ(renderer.cached(preset({}), url, image), image);

    const auto third = render(wanted);
    EXPECT_EQ(rendering.pending(), 0U);
    runAll(rendering, main);
    EXPECT_EQ(answers, 3);

    const auto other = render(preset({{"Exposure2012", 1.0}}));
    runAll(rendering, main);
    EXPECT_EQ(renderer.cached(wanted, url, image), nullptr) << "a newer revision replaces it";
    renderer.emptyCaches();
    EXPECT_EQ(renderer.cached(preset({}), url, nullptr), nullptr);
}

TEST_F(PresetRendererTest, onlyTheNewestRevisionIsDrawn) {
    const auto before = preset(strongColors(), 0.5), after = preset(strongColors(), 0.6);
    auto other = preset(strongColors());
    other.id = "other";
    const auto a = render(before), b = render(after), c = render(other);
    runAll(rendering, main);
    EXPECT_EQ(answers, 3);
    EXPECT_EQ(renderer.cached(before, url, image), nullptr);
    EXPECT_NE(renderer.cached(after, url, image), nullptr);
    EXPECT_NE(renderer.cached(other, url, image), nullptr) << "a preset of its own";

    // Back and forth before anything was drawn: the last one asked for is.
    const auto d = render(before), e = render(after), f = render(before);
    last = nullptr;
    runAll(rendering, main);
    EXPECT_NE(renderer.cached(before, url, image), nullptr);
    EXPECT_EQ(last, renderer.cached(before, url, image));
    EXPECT_EQ(answers, 6);
}

TEST_F(PresetRendererTest, whoWithdrawsIsNotAnsweredAndItsDrawingStops) {
    const auto wanted = preset(strongColors());
    auto request = render(wanted);
    request.cancel();
    runAll(rendering, main);
    EXPECT_EQ(answers, 0);
    EXPECT_EQ(renderer.cached(wanted, url, image), nullptr);
}

/// Takes jobs from other threads.
class MainThread : public Executor {
public:
    void post(std::function<void()> job) override {
        const std::lock_guard lock{m_mutex};
        m_jobs.post(std::move(job));
    }
    void runAll() {
        ManualExecutor jobs;
        {
            const std::lock_guard lock{m_mutex};
            std::swap(jobs, m_jobs);
        }
        jobs.runAll();
    }

private:
    std::mutex m_mutex;
    ManualExecutor m_jobs;
};

TEST_F(PresetRendererTest, threadsDrawWhileTheMainThreadChangesItsMind) {
    ThreadPool pool{2};
    MainThread mainThread;
    PresetRenderer threaded{pool, mainThread};
    std::vector<ImageRequest> requests;
    const auto large = mixedPicture({900, 600});
    for (int i = 0; i < 40; ++i) {
        auto wanted = preset({{"Exposure2012", i / 20.0}, {"Clarity2012", 40.0}, {"GrainAmount", 20.0}});
        wanted.id = std::to_string(i % 3);
        if (i % 5 == 4) requests[static_cast<std::size_t>(i) / 2].cancel();
        if (i % 11 == 10) threaded.emptyCaches();
        if (i % 7 == 6) threaded.shrinkCache();
        requests.push_back(threaded.render(wanted, url, large, [this](const BitmapPtr& result) {
            ++answers;
            if (result) last = result;
        }));
        mainThread.runAll();
    }
    std::latch ended{2};
    for (int i = 0; i < 2; ++i) pool.post([&ended] { ended.arrive_and_wait(); });
    ended.wait();
    pool.end();
    mainThread.runAll();
    EXPECT_GE(answers, 30);
    ASSERT_NE(last, nullptr);
    EXPECT_EQ(last->size(), large->size());
}

} // namespace
} // namespace kelvara
