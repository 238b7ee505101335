#include "services/ThumbnailService.h"

#include "async/PriorityLanes.h"
#include "services/PreviewService.h"
#include "support/ManualExecutor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace kelvara {
namespace {

/// A decode of which the test sees everything.
class FakeDecoding {
public:
    ThumbnailService::Decoding thumbnails() {
        return {.thumbnail = [this](const FileURL& url, int maxPixelSize,
                                    const std::stop_token& stop) { return decode(url, maxPixelSize, stop); },
                .quickThumbnail = [this](const FileURL& url,
                                         const std::stop_token& stop) { return decode(url, 160, stop); }};
    }
    PreviewService::Decoding previews() {
        return [this](const FileURL& url, const std::stop_token& stop) { return decode(url, 6000, stop); };
    }

    std::vector<std::string> decoded; ///< Names with sizes, in the order of decoding.
    /// Runs while a decode runs, as other threads do.
    std::function<void()> meanwhile;

private:
    BitmapPtr decode(const FileURL& url, int side, const std::stop_token& stop) {
        if (stop.stop_requested()) return nullptr;
        decoded.push_back(std::string{url.name()} + '@' + std::to_string(side));
        if (const auto others = std::exchange(meanwhile, nullptr)) others();
        return url.name() == "broken" ? nullptr : Bitmap::create({side, 1}, ColorProfile::sRGB());
    }
};

class ThumbnailServiceTest : public testing::Test {
protected:
    ImageCallback keep(std::vector<BitmapPtr>& answers) {
        return [&answers](BitmapPtr image) { answers.push_back(std::move(image)); };
    }
    static FileURL file(const std::string& name) { return FileURL{"/card/" + name}; }
    void finish() {
        while (pool.runOne() || main.runOne()) {
        }
    }

    ManualExecutor pool, main;
    PriorityLanes lanes{pool, 2};
    FakeDecoding decoding;
    ImageExecutors executors{lanes.urgent(), lanes.background(), main};
    ThumbnailService service{executors, decoding.thumbnails()};
    std::vector<BitmapPtr> results;
};

using Names = std::vector<std::string>;

TEST_F(ThumbnailServiceTest, requestsGetTheTierThatIsLargeEnough) {
    EXPECT_EQ(ThumbnailService::tier(100), 256);
    EXPECT_EQ(ThumbnailService::tier(256), 256);
    EXPECT_EQ(ThumbnailService::tier(257), 512);
    EXPECT_EQ(ThumbnailService::tier(1024), 1024);
    EXPECT_EQ(ThumbnailService::tier(5000), 1024);
}

TEST_F(ThumbnailServiceTest, looksForTheTierOrLargerButNeverSmaller) {
    const auto small = service.thumbnail(file("a"), 200, keep(results));
    finish();
    EXPECT_FALSE(service.cachedThumbnail(file("a"), 512));
    EXPECT_EQ(service.largestCachedThumbnail(file("a")), results.back());
    const auto large = service.thumbnail(file("a"), 1000, keep(results));
    finish();
    EXPECT_EQ(service.cachedThumbnail(file("a"), 300), results.back());
    EXPECT_EQ(service.cachedThumbnail(file("a"), 256), results.front());
    EXPECT_EQ(service.largestCachedThumbnail(file("a")), results.back());
    EXPECT_EQ(decoding.decoded, (Names{"a@256", "a@1024"}));
    EXPECT_FALSE(service.cachedQuickThumbnail(file("a")));
    const auto quick = service.quickThumbnail(file("a"), keep(results));
    finish();
    EXPECT_EQ(service.cachedQuickThumbnail(file("a")), results.back());
}

TEST_F(ThumbnailServiceTest, answersOnTheMainThreadAndNeverInsideTheCall) {
    const auto a = service.thumbnail(file("a"), 256, keep(results));
    EXPECT_TRUE(a.isPending());
    pool.runAll();
    EXPECT_TRUE(results.empty());
    main.runAll();
    EXPECT_EQ(results.size(), 1U);
    EXPECT_FALSE(a.isPending());
    const auto again = service.thumbnail(file("a"), 256, keep(results));
    EXPECT_EQ(results.size(), 1U);
    main.runAll();
    EXPECT_EQ(results.size(), 2U);
}

TEST_F(ThumbnailServiceTest, aRequestThatIsGoneIsNeverAnswered) {
    auto a = service.thumbnail(file("a"), 256, keep(results));
    a = {};
    finish();
    EXPECT_TRUE(decoding.decoded.empty());
    auto b = service.thumbnail(file("b"), 256, keep(results));
    pool.runAll();
    b.cancel(); // its answer is on the way
    main.runAll();
    EXPECT_TRUE(results.empty());
    // Gone in its own answer, as when a cell is reused.
    ImageRequest c;
    c = service.thumbnail(file("b"), 256, [&](const BitmapPtr& image) {
        c = {};
        results.push_back(image);
    });
    finish();
    EXPECT_EQ(results.size(), 1U);
}

TEST_F(ThumbnailServiceTest, prefetchSkipsWhatIsCachedAndKeepsItsOrder) {
    const std::vector files{file("c"), file("a"), file("b"), file("broken")};
    service.prefetch(files, 256);
    service.prefetch(files, 256);
    finish();
    EXPECT_EQ(decoding.decoded, (Names{"c@256", "a@256", "b@256", "broken@256"}));
    service.prefetch(files, 256);
    finish();
    EXPECT_EQ(decoding.decoded.size(), 5U) << "only what failed is tried again";
}

TEST_F(ThumbnailServiceTest, twoFilesAreReadAtOnceAndWhatIsVisibleComesNext) {
    std::vector<ImageRequest> requests;
    std::size_t decodedMeanwhile = 0;
    // All other threads' work is done inside the second of two decodes.
    decoding.meanwhile = [&] {
        decoding.meanwhile = [&] {
            for (const auto* name : {"d", "visible"}) // the first is queued as a prefetch
                requests.push_back(service.thumbnail(file(name), 256, keep(results)));
            pool.runAll();
            decodedMeanwhile = decoding.decoded.size();
        };
        pool.runOne();
    };
    service.prefetch(std::vector{file("a"), file("b"), file("c"), file("d")}, 256);
    finish();
    EXPECT_EQ(decodedMeanwhile, 2U) << "both slots are taken, by a and b";
    EXPECT_EQ(decoding.decoded, (Names{"a@256", "b@256", "d@256", "visible@256", "c@256"}));
}

TEST_F(ThumbnailServiceTest, imagesOfTheOldScreenAreNotKept) {
    const auto a = service.thumbnail(file("a"), 256, keep(results));
    finish();
    auto b = service.thumbnail(file("b"), 256, keep(results));
    service.emptyCaches();
    EXPECT_FALSE(service.largestCachedThumbnail(file("a")));
    finish();
    EXPECT_EQ(results.size(), 2U);
    EXPECT_FALSE(service.cachedThumbnail(file("b"), 256));
}

TEST_F(ThumbnailServiceTest, mayEndWhileItsDecodesAreQueued) {
    ImageRequest request;
    {
        ThumbnailService brief{executors, decoding.thumbnails()};
        brief.prefetch(std::vector{file("b"), file("c"), file("d")}, 256);
        pool.runOne();
        request = brief.thumbnail(file("a"), 256, keep(results));
    }
    finish();
    EXPECT_TRUE(results.empty());
    EXPECT_EQ(decoding.decoded, Names{"b@256"});
}

class PreviewServiceTest : public ThumbnailServiceTest {
protected:
    PreviewService previews{executors, service, decoding.previews()};
};

TEST_F(PreviewServiceTest, showsTheFullImageElseTheLargestThumbnail) {
    EXPECT_FALSE(previews.cachedImage(file("a")));
    const auto thumbnail = service.thumbnail(file("a"), 256, keep(results));
    finish();
    EXPECT_EQ(previews.cachedImage(file("a")), results.back());
    EXPECT_FALSE(previews.cachedFullResolution(file("a")));
    const auto full = previews.fullResolution(file("a"), keep(results));
    finish();
    EXPECT_EQ(previews.cachedImage(file("a")), results.back());
    EXPECT_EQ(results.back()->width(), 6000);
    previews.emptyCaches();
    EXPECT_EQ(previews.cachedImage(file("a")), results.front());
}

TEST_F(PreviewServiceTest, theFocusedPhotoOvertakesPrefetchesItsOwnIncluded) {
    for (const auto* name : {"a", "b", "c"}) previews.prefetch(file(name));
    const auto focused = previews.fullResolution(file("c"), keep(results));
    finish();
    EXPECT_EQ(decoding.decoded, (Names{"c@6000", "a@6000", "b@6000"}));
}

TEST_F(PreviewServiceTest, keepsSixImages) {
    for (const auto* name : {"1", "2", "3", "4", "5", "6", "7"}) previews.prefetch(file(name));
    finish();
    EXPECT_FALSE(previews.cachedFullResolution(file("1")));
    EXPECT_TRUE(previews.cachedFullResolution(file("2")));
    EXPECT_TRUE(previews.cachedFullResolution(file("7")));
}

} // namespace
} // namespace kelvara
