#include "views/EmptyState.h"

#include "library/LibraryFixture.h"

#include <gtest/gtest.h>

namespace kelvara {

namespace {

/// A source with files that filters hide.
EmptyFacts filtered() { return {.hasSource = true, .hasItems = true}; }

} // namespace

TEST(EmptyCauseTest, aSourceIsMissedBeforeAnythingElse) {
    EXPECT_EQ(emptyCause({}), EmptyCause::noSource);
    EXPECT_EQ(emptyCause({.hasSource = true, .isScanning = true}), EmptyCause::scanning);
    EXPECT_EQ(emptyCause({.hasSource = true, .hasScanError = true}), EmptyCause::scanError);
    EXPECT_EQ(emptyCause({.hasSource = true}), EmptyCause::emptyFolder);
    EXPECT_EQ(emptyCause({.hasSource = true, .hasItems = true, .hasVisibleItems = true}), std::nullopt);
}

TEST(EmptyCauseTest, theFirstFilterThatLeavesNothingByItselfIsTheCause) {
    auto facts = filtered();
    facts.isSearching = facts.showsOnlyMarked = facts.filtersRatings = facts.hidesEveryType = true;
    EXPECT_EQ(emptyCause(facts), EmptyCause::noMatches);
    facts.matchesSomeName = true;
    EXPECT_EQ(emptyCause(facts), EmptyCause::noMarkedFiles);
    facts.hasMarks = true;
    EXPECT_EQ(emptyCause(facts), EmptyCause::noMatchingRatings);
    facts.matchesSomeRating = true;
    EXPECT_EQ(emptyCause(facts), EmptyCause::allFilesHidden);
    facts.hidesEveryType = false;
    EXPECT_EQ(emptyCause(facts), EmptyCause::combinedFilters);
}

class EmptyStateTest : public LibraryFixture {
protected:
    LibraryViewModel& open(std::initializer_list<std::string_view> names) {
        for (const auto name : names) m_card.write(name, "x");
        return start(m_card.url());
    }
    [[nodiscard]] std::optional<EmptyCause> cause() const { return emptyCause(emptyFacts(*m_library)); }
    /// The button of the present state brings photos back.
    void expectButtonShowsPhotos() {
        ASSERT_TRUE(cause());
        removeCause(*cause(), *m_library);
        EXPECT_EQ(cause(), std::nullopt);
    }
};

TEST_F(EmptyStateTest, eachFilterIsNamedAsTheCauseAndItsButtonRemovesIt) {
    auto& library = open({"IMG_1.CR3", "IMG_2.JPG"});
    EXPECT_EQ(cause(), std::nullopt);

    library.setSearchText(" wedding ");
    EXPECT_EQ(cause(), EmptyCause::noMatches);
    EXPECT_EQ(emptyText(*cause(), library).description, QString{"No file names contain “wedding”."});
    expectButtonShowsPhotos();

    library.setShowsOnlyChecked(true);
    EXPECT_EQ(cause(), EmptyCause::noMarkedFiles);
    expectButtonShowsPhotos();

    library.setRatingFilter(RatingFilter::atLeast(*Rating::fromRawValue(3)));
    EXPECT_EQ(cause(), EmptyCause::noMatchingRatings);
    expectButtonShowsPhotos();

    library.setHiddenExtensions({"CR3", "JPG", "NEF"});
    EXPECT_EQ(cause(), EmptyCause::allFilesHidden);
    expectButtonShowsPhotos();
}

TEST_F(EmptyStateTest, filtersThatOnlyTogetherLeaveNothingAreNotBlamedOneByOne) {
    auto& library = open({"IMG_1.CR3", "IMG_2.JPG"});
    library.setSearchText("img_1");
    library.toggleExtension("CR3");
    EXPECT_EQ(cause(), EmptyCause::combinedFilters);
    expectButtonShowsPhotos();
}

TEST_F(EmptyStateTest, aSearchThatMatchesNothingIsTheCauseAlsoBesideOtherFilters) {
    auto& library = open({"IMG_1.CR3", "IMG_2.JPG"});
    library.toggleExtension("CR3");
    library.setSearchText("wedding");
    EXPECT_EQ(cause(), EmptyCause::noMatches);
}

TEST_F(EmptyStateTest, aCardIsCalledByItsVolumesNameAndAFolderByItsOwn) {
    auto& library = open({"DCIM/IMG_1.CR3"});
    EXPECT_EQ(sourceTitle(library).toStdString(), m_card.url().name());
    auto card = volume(m_card.url(), true);
    card.name = "EOS_DIGITAL";
    m_volumes.mount(card);
    library.selectVolume(m_card.url());
    EXPECT_EQ(sourceTitle(library), QString{"EOS_DIGITAL"});
}

} // namespace kelvara
