#include "LibraryFixture.h"

namespace kelvara {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

class LibraryMarksTest : public LibraryFixture {
protected:
    void SetUp() override {
        for (const auto* name : {"a.jpg", "b.jpg", "c.jpg", "d.jpg"}) m_card.write(name, "12345", 1000);
        m_card.write("raw/e.NEF", "x", 2000);
        m_card.write("raw/e.JPG", "x", 2000);
        start(m_card.url());
    }
    FileURL url(std::string_view name) { return m_card / name; }
    static Rating stars(int count) { return *Rating::fromRawValue(count); }
};

TEST_F(LibraryMarksTest, aRangeGoesFromTheFocusToTheTargetInEitherDirection) {
    m_library->toggleChecked(url("d.jpg"));
    m_library->setFocusedID(url("c.jpg"));
    m_library->markRange(url("a.jpg"));
    EXPECT_THAT(m_library->checkedIDs(),
                UnorderedElementsAre(url("a.jpg"), url("b.jpg"), url("c.jpg"), url("d.jpg")));
    EXPECT_EQ(focusedName(), "a.jpg");
    EXPECT_EQ(m_library->checkedBytes(), 20);
    m_library->clearMarks();
    m_library->setFocusedID({});
    m_library->markRange(url("b.jpg"));
    EXPECT_THAT(m_library->checkedIDs(), UnorderedElementsAre(url("b.jpg")));
    m_library->markRange(url("missing.jpg"));
    EXPECT_EQ(m_library->checkedIDs().size(), 1U);
}

TEST_F(LibraryMarksTest, marksAreFiledByFileAndRatingsByShot) {
    m_library->toggleChecked(url("raw/e.JPG"));
    EXPECT_FALSE(m_library->isChecked(url("raw/e.NEF")));
    m_library->setRating(stars(3), url("raw/e.JPG"));
    EXPECT_EQ(m_library->rating(url("raw/e.NEF")), stars(3));
    EXPECT_TRUE(m_library->keepsRatingInSidecar(url("raw/e.JPG")));
    EXPECT_FALSE(m_library->keepsRatingInSidecar(url("a.jpg")));
}

TEST_F(LibraryMarksTest, theLastOfManyRatingsStaysInTheSidecarAndComesBack) {
    for (int press = 0; press < 50; ++press) m_library->setRating(stars(press % 5 + 1), url("raw/e.JPG"));
    settle();
    EXPECT_EQ(XMPService::rating(TemporaryFolder::read(url("raw/e.xmp"))), stars(5));
    m_library->setRating(stars(2), url("a.jpg"));
    settle();
    EXPECT_FALSE(TemporaryFolder::exists(url("a.xmp"))) << "a photo without a RAW is rated for the session";
    m_library->rescan();
    settle();
    EXPECT_EQ(m_library->rating(url("raw/e.NEF")), stars(5));
    EXPECT_EQ(m_library->rating(url("a.jpg")), Rating{});
}

TEST_F(LibraryMarksTest, ratingTheFocusedPhotoAwayRatesThatPhotoAndNotTheNext) {
    m_library->setRatingFilter(RatingFilter::unrated());
    m_library->setFocusedID(url("raw/e.JPG"));
    m_library->setRating(stars(3), m_library->focusedID()); // which is another one afterwards
    settle();
    EXPECT_EQ(XMPService::rating(TemporaryFolder::read(url("raw/e.xmp"))), stars(3));
    EXPECT_EQ(m_card.files("raw"), (std::vector<std::string>{"e.JPG", "e.NEF", "e.xmp"}));
    EXPECT_EQ(m_library->rating(url("raw/e.NEF")), stars(3));
}

TEST_F(LibraryMarksTest, aRatingOnItsWayToTheDiskSurvivesARescanAndANewSource) {
    m_library->setRating(stars(3), url("raw/e.NEF"));
    m_library->rescan();
    m_background.runAll(); // reads no sidecar, as none is written yet
    settle();
    EXPECT_EQ(m_library->rating(url("raw/e.NEF")), stars(3));

    m_library->setRating(stars(4), url("raw/e.NEF"));
    m_library->rescan();
    m_background.runAll();
    m_sidecarWrites.runAll(); // written after it was read and before that is published
    settle();
    EXPECT_EQ(m_library->rating(url("raw/e.NEF")), stars(4));

    m_library->setRating(stars(5), url("raw/e.NEF"));
    m_library->setSourceURL({});
    settle();
    EXPECT_EQ(XMPService::rating(TemporaryFolder::read(url("raw/e.xmp"))), stars(5));

    // Once it is there, the disk decides: somebody else may have rated the photo since.
    ASSERT_TRUE(m_sidecars.setRating(stars(1), url("raw/e.xmp")));
    m_library->setSourceURL(m_card.url());
    settle();
    EXPECT_EQ(m_library->rating(url("raw/e.NEF")), stars(1));
}

TEST_F(LibraryMarksTest, aRatingThatCouldNotBeSavedIsGoneAfterARescan) {
    m_card.write("raw/e.xmp", "not XML");
    m_library->setRating(stars(4), url("raw/e.NEF"));
    m_library->rescan();
    m_sidecarWrites.runAll();
    settle();
    EXPECT_EQ(m_library->rating(url("raw/e.NEF")), Rating{});
    EXPECT_FALSE(m_library->ratingSaveError().empty());
}

TEST_F(LibraryMarksTest, filesOfOneStemInOneFolderArePaired) {
    for (const auto* name : {"raw/e.mov", "raw/E.jpg", "other/e.CR3"}) m_card.write(name, "x", 2000);
    m_library->rescan();
    settle();
    const auto pairsOf = [this](std::string_view name) {
        const std::vector<PhotoItem> items{{url(name), 0, std::nullopt}};
        std::vector<FileURL> urls;
        for (const auto& item : m_library->pairedFiles(items)) urls.push_back(item.url);
        return urls;
    };
    EXPECT_THAT(pairsOf("raw/e.NEF"), ElementsAre(url("raw/e.JPG"), url("raw/e.mov")));
    EXPECT_TRUE(pairsOf("raw/E.jpg").empty()) << "names are told apart by case";
    EXPECT_TRUE(pairsOf("other/e.CR3").empty());
}

TEST_F(LibraryMarksTest, clearingStarsThatAreNotThereWritesNothing) {
    m_library->setRating(Rating{}, url("raw/e.NEF"));
    EXPECT_EQ(m_sidecarWrites.pending(), 0U);
}

TEST_F(LibraryMarksTest, aSidecarThatIsNoneIsLeftAloneAndReported) {
    m_card.write("raw/e.xmp", "not XML");
    m_library->setRating(stars(4), url("raw/e.NEF"));
    settle();
    EXPECT_EQ(m_library->ratingSaveError(),
              "Couldn't save the rating for e.NEF: e.xmp exists but isn't valid XMP, so "
              "it was left untouched.");
    EXPECT_EQ(TemporaryFolder::read(url("raw/e.xmp")), "not XML");
    EXPECT_EQ(m_library->rating(url("raw/e.NEF")), stars(4));
}

TEST_F(LibraryMarksTest, ratingWhileUnratedIsShownTakesThePhotoOutAtOnce) {
    m_library->setRatingFilter(RatingFilter::unrated());
    m_library->setFocusedID(url("b.jpg"));
    m_library->setRating(stars(1), url("b.jpg"));
    EXPECT_EQ(visibleNames().size(), 5U);
    EXPECT_EQ(focusedName(), "c.jpg");
}

TEST_F(LibraryMarksTest, unmarkingWhileOnlyMarkedAreShownTakesThePhotoOut) {
    m_library->toggleChecked(url("a.jpg"));
    m_library->toggleChecked(url("b.jpg"));
    m_library->setShowsOnlyChecked(true);
    EXPECT_THAT(visibleNames(), ElementsAre("a.jpg", "b.jpg"));
    m_library->toggleChecked(url("a.jpg"));
    EXPECT_THAT(visibleNames(), ElementsAre("b.jpg"));
    m_library->clearMarks();
    EXPECT_TRUE(visibleNames().empty());
}

TEST_F(LibraryMarksTest, anActionOnOneOfSeveralMarkedPhotosAppliesToAll) {
    const auto targets = [this](std::string_view name) {
        m_library->setFocusedID(url(name));
        std::vector<FileURL> urls;
        for (const auto& item : m_library->actionTargets(*m_library->focusedItem())) urls.push_back(item.url);
        return urls;
    };
    m_library->toggleChecked(url("c.jpg"));
    EXPECT_THAT(targets("c.jpg"), ElementsAre(url("c.jpg")));
    m_library->toggleChecked(url("a.jpg"));
    EXPECT_THAT(targets("c.jpg"), ElementsAre(url("a.jpg"), url("c.jpg")));
    EXPECT_THAT(targets("b.jpg"), ElementsAre(url("b.jpg")));
}

} // namespace
} // namespace kelvara
