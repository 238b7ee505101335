#include "LibraryFixture.h"

#include "library/PreferenceKeys.h"

namespace kelvara {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Property = LibraryProperty;

class LibraryScanTest : public LibraryFixture {};

TEST_F(LibraryScanTest, publishesAFolderSortedAndFocusesTheFirstItem) {
    m_card.write("b.jpg", "12", 2000);
    m_card.write("a.jpg", "123", 1000);
    auto& library = start(m_card.url());
    EXPECT_FALSE(library.isScanning());
    EXPECT_THAT(visibleNames(), ElementsAre("a.jpg", "b.jpg"));
    EXPECT_EQ(focusedName(), "a.jpg");
    library.setSortOrder(SortOrder::fileSize);
    library.setSortsAscending(true);
    EXPECT_THAT(visibleNames(), ElementsAre("b.jpg", "a.jpg"));
    EXPECT_EQ(focusedName(), "a.jpg") << "sorting moves no focus";
}

TEST_F(LibraryScanTest, aSupersededScanPublishesNothing) {
    const auto first = m_card.write("one/a.jpg").parent();
    const auto second = m_card.write("two/b.jpg").parent();
    auto& library = start();
    library.setSourceURL(first);
    EXPECT_TRUE(library.isScanning());
    m_background.runAll(); // the first scan is done, its result on the way to the main thread
    library.setSourceURL(second);
    m_main.runAll();
    EXPECT_THAT(visibleNames(), IsEmpty());
    EXPECT_TRUE(library.isScanning());
    settle();
    EXPECT_THAT(visibleNames(), ElementsAre("b.jpg"));
}

TEST_F(LibraryScanTest, rescanForgetsWhatBelongedToTheOldItems) {
    const auto photo = m_card.write("a.jpg");
    auto& library = start(m_card.url());
    library.toggleChecked(photo);
    library.setRating(*Rating::fromRawValue(4), photo);
    library.setShowsOnlyChecked(true);
    library.setRatingFilter(RatingFilter::atLeast(*Rating::fromRawValue(1)));
    library.toggleViewMode();
    m_card.write("b.jpg");
    library.rescan();
    EXPECT_EQ(library.viewMode(), ViewMode::grid);
    EXPECT_TRUE(library.items().empty());
    settle();
    EXPECT_EQ(visibleNames().size(), 2U);
    EXPECT_FALSE(library.showsOnlyChecked());
    EXPECT_FALSE(library.ratingFilter());
    EXPECT_TRUE(library.checkedIDs().empty());
    EXPECT_EQ(library.rating(photo), Rating{});
}

TEST_F(LibraryScanTest, anEmptySourceClearsTheImageCaches) {
    m_card.write("a.jpg");
    auto& library = start(m_card.url());
    library.setSourceURL({});
    EXPECT_EQ(m_cacheClearings, 1);
    EXPECT_FALSE(library.isScanning());
    EXPECT_TRUE(library.items().empty());
    EXPECT_TRUE(library.focusedID().isEmpty());
}

TEST_F(LibraryScanTest, aFolderThatIsNoneIsEmpty) {
    auto& library = start(m_card / "missing");
    EXPECT_FALSE(library.isScanning());
    EXPECT_TRUE(library.items().empty());
    EXPECT_EQ(library.scanError(), "");
}

TEST_F(LibraryScanTest, filteringMovesTheFocusToTheNearestItemLeft) {
    for (const auto* name : {"a.jpg", "b.nef", "c.jpg", "d.nef", "e.jpg"}) m_card.write(name, "x", 1000);
    auto& library = start(m_card.url());
    library.setFocusedID(m_card / "b.nef");
    library.toggleExtension("NEF");
    EXPECT_EQ(focusedName(), "c.jpg");
    library.setFocusedID(m_card / "e.jpg");
    library.toggleExtension("NEF");
    library.toggleExtension("JPG");
    EXPECT_EQ(focusedName(), "d.nef") << "nothing after it is left, so the nearest before";
    library.toggleViewMode();
    library.setSearchText("no such name");
    EXPECT_TRUE(library.focusedID().isEmpty());
    EXPECT_EQ(library.viewMode(), ViewMode::grid);
    library.setSearchText("");
    EXPECT_EQ(focusedName(), "b.nef");
}

TEST_F(LibraryScanTest, viewsHearOfAScanOnceAndWhole) {
    m_card.write("a.jpg");
    auto& library = start();
    int calls = 0;
    const auto subscription = library.observe(
        {Property::visibleItems, Property::focusedID, Property::isScanning}, [&](const auto&) {
            ++calls;
            EXPECT_EQ(library.visibleItems().isEmpty(), library.focusedID().isEmpty());
            EXPECT_EQ(library.isScanning(), library.visibleItems().isEmpty());
        });
    library.setSourceURL(m_card.url());
    EXPECT_EQ(calls, 1);
    settle();
    EXPECT_EQ(calls, 2);
}

TEST_F(LibraryScanTest, goingAwayDuringAScanIsHarmless) {
    m_card.write("a.jpg");
    start();
    m_library->setSourceURL(m_card.url());
    m_background.runAll();
    m_library.reset();
    m_main.runAll();
}

TEST_F(LibraryScanTest, slicesAroundTheFocusStayInsideTheList) {
    for (const auto* name : {"a.jpg", "b.jpg", "c.jpg", "d.jpg", "e.jpg"}) m_card.write(name, "x", 1000);
    auto& library = start(m_card.url());
    library.setFocusedID(m_card / "b.jpg");
    EXPECT_EQ(library.filmstripItems(1, 2, 0), (IndexRange{0, 3}));
    EXPECT_EQ(library.filmstripItems(1, 0, 9), (IndexRange{0, 5}));
    std::vector<std::string> near;
    for (const auto& item : library.neighbours(m_card / "b.jpg", 2)) near.emplace_back(item.url.name());
    EXPECT_THAT(near, ElementsAre("c.jpg", "a.jpg", "d.jpg"));
    library.setColumnCount(2);
    EXPECT_EQ(library.prefetchCandidates({0, 2}, 1).size(), 2U);
    EXPECT_EQ(library.prefetchCandidates({0, 2}, 3).size(), 3U);
    EXPECT_TRUE(library.prefetchCandidates({0, 5}, 3).empty());
}

} // namespace
} // namespace kelvara
