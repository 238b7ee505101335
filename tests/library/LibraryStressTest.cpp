// The library on real threads, everything at once: what the sanitizers are to look at, and what must hold
// whatever the threads' order.

#include "async/ThreadPool.h"
#include "library/FileRemoval.h"
#include "library/LibraryViewModel.h"
#include "library/PreferenceKeys.h"
#include "platform/linux/LinuxFileSystem.h"
#include "services/CopyService.h"
#include "services/VolumeService.h"
#include "services/XMPService.h"
#include "support/FakeAnalytics.h"
#include "support/FakeDesktop.h"
#include "support/FakeTrash.h"
#include "support/TemporaryFolder.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <gtest/gtest.h>
#include <map>
#include <mutex>
#include <random>

namespace kelvara {
namespace {

/// The thread that makes it is the main thread; it runs jobs when it finds the time.
class MainLoop : public Executor {
public:
    void post(std::function<void()> job) override {
        const std::scoped_lock lock{m_mutex};
        m_jobs.push_back(std::move(job));
        m_wake.notify_one();
    }
    /// At most so many of the jobs that are there.
    void runSome(int count) {
        for (; count > 0; --count) {
            std::unique_lock lock{m_mutex};
            if (m_jobs.empty()) return;
            runNext(lock);
        }
    }
    template <typename Condition> void runUntil(Condition isDone) {
        while (!isDone()) {
            std::unique_lock lock{m_mutex};
            m_wake.wait(lock, [this] { return !m_jobs.empty(); });
            runNext(lock);
        }
    }

private:
    void runNext(std::unique_lock<std::mutex>& lock) {
        const auto job = std::move(m_jobs.front());
        m_jobs.pop_front();
        lock.unlock();
        job();
    }
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_jobs;
};

class LibraryStressTest : public testing::Test {
protected:
    static constexpr int steps = 500;

    void SetUp() override {
        for (const auto* card : {"one", "two"}) {
            m_cards.push_back({m_disk / card, card, true, {}, {}, m_disk / card});
            for (unsigned shot = 0; shot < 24; ++shot) {
                const auto stem = std::string{card} + "/DSC_" + std::to_string(shot);
                // Sizes and names differ between the cards, so that no copy is taken for another one's.
                if (shot % 3 != 0) m_disk.write(stem + card + ".NEF", std::string(100 + shot, 'r'), 1000);
                if (shot % 2 != 0) m_disk.write(stem + card + ".JPG", std::string(50 + shot, 'j'), 2000);
            }
        }
        m_preferences.setText(PreferenceKeys::copyDestination, (m_disk / "kept").path());
        m_volumes.mounted = m_cards;
        m_library = std::make_unique<LibraryViewModel>(LibraryServices{.files = m_files,
                                                                       .trash = m_trash,
                                                                       .background = *m_background,
                                                                       .sidecarWrites = *m_sidecarWrites,
                                                                       .main = m_main,
                                                                       .preferences = m_preferences,
                                                                       .volumes = m_volumeService,
                                                                       .sidecars = m_sidecars,
                                                                       .copier = m_copier,
                                                                       .folderChooser = m_chooser,
                                                                       .desktop = m_desktop,
                                                                       .analytics = m_analytics,
                                                                       .emptyImageCaches = [] {},
                                                                       .collationLocale = {}},
                                                       m_cards[0].url);
    }

    int below(int bound) { return std::uniform_int_distribution{0, bound - 1}(m_random); }
    bool oneIn(int count) { return below(count) == 0; }
    static bool isRaw(const PhotoItem& item) { return item.kind() == MediaKind::raw; }
    /// Some photo that is shown; empty where none is.
    FileURL anyVisible() {
        const auto& visible = m_library->visibleItems();
        return visible.isEmpty()
                   ? FileURL{}
                   : visible[static_cast<std::size_t>(below(static_cast<int>(visible.size())))].url;
    }

    void rate() {
        const auto photo = oneIn(3) ? m_library->focusedID() : anyVisible();
        if (photo.isEmpty()) return;
        const auto stars = *Rating::fromRawValue(below(6));
        if (m_library->keepsRatingInSidecar(photo) && m_library->rating(photo) != stars) {
            m_expected[photo.stemKey()] = stars;
        }
        m_library->setRating(stars, photo);
    }
    void mark() {
        const auto photo = anyVisible();
        if (oneIn(20)) m_library->clearMarks();
        if (photo.isEmpty()) return;
        oneIn(3) ? m_library->markRange(photo) : m_library->toggleChecked(photo);
    }
    void changeFilter() {
        switch (below(6)) {
        case 0:
            m_library->setRatingFilter(oneIn(2) ? std::optional{RatingFilter::unrated()} : std::nullopt);
            break;
        case 1:
            m_library->setShowsOnlyChecked(oneIn(2));
            break;
        case 2:
            m_library->setSearchText(oneIn(3) ? "1" : "");
            break;
        case 3:
            m_library->toggleExtension("JPG");
            break;
        case 4:
            m_library->setSortOrder(oneIn(2) ? SortOrder::name : SortOrder::captureDate);
            break;
        default:
            m_library->setSortsAscending(oneIn(2));
        }
    }
    void changeSource() {
        const auto& card = m_cards[static_cast<std::size_t>(below(2))];
        if (oneIn(2)) return m_library->rescan();
        m_library->setSourceURL(oneIn(5) ? FileURL{} : card.url);
    }
    void changeVolumes() {
        const auto& card = m_cards[static_cast<std::size_t>(below(2))];
        if (m_volumes.onEjected && oneIn(2)) {
            std::exchange(m_volumes.onEjected, {})(Failure{std::string{"It is busy."}});
        } else if (oneIn(4)) {
            m_library->eject(card);
        } else if (std::find(m_volumes.mounted.begin(), m_volumes.mounted.end(), card) !=
                   m_volumes.mounted.end()) {
            m_volumes.unmount(card.url);
        } else {
            m_volumes.mount(card);
        }
    }
    void copy() {
        if (oneIn(3)) return m_library->cancelCopy();
        m_library->dismissCopy();
        m_library->startCopy();
    }
    /// One photo, while scans and ratings go on.
    void deletePhoto() {
        const auto* photo = m_library->focusedItem();
        if (!photo) return;
        const std::vector targets{*photo};
        m_library->requestDelete(targets);
        m_library->clearDeleteError();
        if (!m_library->pendingDeletion()) return; // a copy or an ejection runs
        for (const auto& sidecar : orphanedSidecars(std::vector{targets[0].url}, m_library->items())) {
            m_expected.erase(sidecar);
        }
        m_library->confirmDeletion();
        if (oneIn(2)) m_library->rescan();
        m_main.runUntil([&] { return !m_library->isDeleting(); });
        ++m_deletions;
        ASSERT_EQ(m_library->deleteError(), "");
    }
    void step() {
        const int kind = below(21);
        if (kind < 8) return rate();
        if (kind < 12) return mark();
        if (kind < 14) return changeFilter();
        if (kind < 15) return m_library->moveFocus(oneIn(2) ? MoveDirection::right : MoveDirection::left);
        if (kind < 17) return copy();
        if (kind < 18) return changeVolumes();
        if (kind < 19) return deletePhoto();
        changeSource();
    }

    void expectWholeState() {
        const auto& visible = m_library->visibleItems();
        ASSERT_EQ(m_library->focusedID().isEmpty(), visible.isEmpty());
        ASSERT_EQ(m_library->focusedItem() == nullptr, visible.isEmpty());
        std::int64_t bytes = 0;
        for (const auto& item : m_library->items()) {
            if (m_library->isChecked(item.url)) bytes += item.fileSize;
            const auto expected = m_expected.find(item.url.stemKey());
            if (!isRaw(item)) continue;
            ASSERT_EQ(m_library->rating(item.url), expected == m_expected.end() ? Rating{} : expected->second)
                << item.url.path();
        }
        ASSERT_EQ(m_library->checkedBytes(), bytes);
        ASSERT_EQ(m_library->sortedItems().size(), m_library->items().size());
    }

    TemporaryFolder m_disk;
    std::vector<VolumeInfo> m_cards;
    std::mt19937 m_random{20240501};
    std::map<FileURL, Rating> m_expected; // of the sidecars
    int m_deletions = 0;

    MainLoop m_main;
    LinuxFileSystem m_files;
    FakeTrash m_trash;
    MemoryPreferences m_preferences;
    FakeVolumes m_volumes;
    VolumeService m_volumeService{m_volumes};
    XMPService m_sidecars{m_files};
    CopyService m_copier{m_files, [](const FileURL&, Rating) -> Result<void, std::string> { return {}; }};
    FakeFolderChooser m_chooser;
    FakeDesktop m_desktop;
    FakeAnalytics m_analytics;
    std::unique_ptr<ThreadPool> m_sidecarWrites = std::make_unique<ThreadPool>(1U, ThreadPool::AtEnd::finish);
    std::unique_ptr<ThreadPool> m_background = std::make_unique<ThreadPool>(3U);
    std::unique_ptr<LibraryViewModel> m_library;
};

TEST_F(LibraryStressTest, everythingAtOnceLosesNoRatingAndCopiesOnlyWholeFiles) {
    int copies = 0;
    const auto isCopying = [this] {
        return std::holds_alternative<CopyService::Progress>(m_library->copyState());
    };
    const auto subscription = m_library->observe({LibraryProperty::copyState}, [&](const auto&) {
        if (const auto* report = std::get_if<CopyService::Report>(&m_library->copyState())) {
            EXPECT_TRUE(report->failures.empty()) << report->failures[0].reason;
            ++copies;
        }
    });
    for (int i = 0; i < steps; ++i) {
        step();
        m_main.runSome(below(6));
        if (oneIn(8)) m_main.runUntil([&] { return !m_library->isScanning(); });
        if (oneIn(60)) m_main.runUntil([&] { return !isCopying(); });
        ASSERT_NO_FATAL_FAILURE(expectWholeState()) << "step " << i;
    }
    EXPECT_GT(copies, 0);
    EXPECT_GT(m_deletions, 0);
    EXPECT_GT(m_expected.size(), 10U);

    // It goes in the middle of things, as a window does that is closed: ratings are still finished.
    m_library->rescan();
    m_library.reset();
    m_background.reset();
    m_sidecarWrites.reset();
    m_main.runSome(1'000'000);
    EXPECT_EQ(m_library, nullptr);
    for (const auto& [sidecar, stars] : m_expected) {
        EXPECT_EQ(XMPService::rating(TemporaryFolder::read(sidecar)), stars) << sidecar.path();
    }
    for (const auto& name : m_disk.files("kept")) {
        const auto card = name.find("one") != std::string::npos ? "one/" : "two/";
        const auto copied = TemporaryFolder::read(m_disk / ("kept/" + name));
        if (FileURL{"/" + name}.extension() == "xmp") {
            EXPECT_TRUE(XMPService::rating(copied)) << name;
        } else if (TemporaryFolder::exists(m_disk / (card + name))) { // and not deleted since
            EXPECT_EQ(copied, TemporaryFolder::read(m_disk / (card + name))) << name;
        }
    }
}

} // namespace
} // namespace kelvara
