#include "LibraryFixture.h"

#include "library/PreferenceKeys.h"
#include "library/RecentFolders.h"

namespace kelvara {
namespace {

using testing::ElementsAre;

class LibrarySourcesTest : public LibraryFixture {};

TEST_F(LibrarySourcesTest, aCardWinsOverTheLastFolderAtStart) {
    const auto card = m_card.makeFolder("CARD");
    m_preferences.setText(PreferenceKeys::lastSource, m_card.makeFolder("last").path());
    m_volumes.mounted = {volume(m_card / "DISK", false), volume(card, true)};
    EXPECT_EQ(start().sourceURL(), card.child("DCIM"));
}

TEST_F(LibrarySourcesTest, theLastFolderComesBackOnceIfItIsStillThere) {
    const auto last = m_card.makeFolder("last");
    m_preferences.setText(PreferenceKeys::lastSource, last.path());
    auto& library = start();
    EXPECT_EQ(library.sourceURL(), last);
    library.setSourceURL({});
    m_preferences.setText(PreferenceKeys::lastSource, last.path());
    library.refreshVolumes();
    settle();
    EXPECT_TRUE(library.sourceURL().isEmpty()) << "only the first time";

    m_preferences.setText(PreferenceKeys::lastSource, (m_card / "gone").path());
    EXPECT_TRUE(start().sourceURL().isEmpty());
}

TEST_F(LibrarySourcesTest, anInsertedCardBecomesTheSourceOnlyWhereThereIsNone) {
    auto& library = start();
    m_volumes.mount(volume(m_card / "CARD", true));
    settle();
    EXPECT_EQ(library.sourceURL(), m_card / "CARD/DCIM");
    m_volumes.mount(volume(m_card / "ANOTHER", true));
    settle();
    EXPECT_EQ(library.sourceURL(), m_card / "CARD/DCIM");
}

TEST_F(LibrarySourcesTest, aCardThatGoesTakesTheSourceWithIt) {
    m_volumes.mounted = {volume(m_card / "CARD", true)};
    auto& library = start();
    m_volumes.unmount(m_card / "OTHER");
    EXPECT_FALSE(library.sourceURL().isEmpty());
    m_volumes.unmount(m_card / "CARD");
    settle();
    EXPECT_TRUE(library.sourceURL().isEmpty());
}

TEST_F(LibrarySourcesTest, ejectingClearsTheSourceOrSaysWhyNot) {
    const auto card = volume(m_card / "CARD", true);
    m_volumes.mounted = {card};
    auto& library = start();
    library.eject(card);
    EXPECT_EQ(library.ejectingVolumeID(), card.url);
    settle();
    m_volumes.onEjected(Failure{std::string{"The disk is busy."}});
    EXPECT_TRUE(library.ejectingVolumeID().isEmpty());
    EXPECT_EQ(library.ejectError(), "Couldn't eject “CARD”: The disk is busy.");
    EXPECT_FALSE(library.sourceURL().isEmpty());
    library.eject(card);
    settle();
    m_volumes.mounted.clear();
    m_volumes.onEjected({});
    EXPECT_TRUE(library.sourceURL().isEmpty());
}

TEST_F(LibrarySourcesTest, ejectingWaitsForTheRatingsOnTheirWay) {
    const auto photo = m_card.write("CARD/a.NEF");
    const auto card = volume(m_card / "CARD", true);
    m_volumes.mounted = {card};
    auto& library = start(card.url);
    library.setRating(*Rating::fromRawValue(3), photo);
    library.eject(card);
    EXPECT_TRUE(m_volumes.ejected.empty());
    settle();
    EXPECT_THAT(m_volumes.ejected, ElementsAre(card.url));
    EXPECT_TRUE(TemporaryFolder::exists(m_card / "CARD/a.xmp"));
}

TEST_F(LibrarySourcesTest, aDiskThatIsBeingEjectedIsNotOpenedAtItsOtherVolume) {
    const auto first = volume(m_card / "ONE", true);
    const auto second = volume(m_card / "TWO", true);
    m_volumes.mounted = {first, second};
    auto& library = start();
    library.eject(first);
    settle();
    m_volumes.unmount(first.url);
    settle();
    EXPECT_TRUE(library.sourceURL().isEmpty());
    m_volumes.unmount(second.url);
    m_volumes.mount(volume(m_card / "THREE", true));
    m_volumes.onEjected({});
    settle();
    EXPECT_EQ(library.sourceURL(), m_card / "THREE/DCIM") << "another card is opened once that is over";
}

TEST_F(LibrarySourcesTest, aNewSourceClearsTheSearchAndIsRemembered) {
    const auto folder = m_card.makeFolder("photos");
    auto& library = start();
    library.setSearchText("abc");
    library.setSourceURL(folder);
    EXPECT_EQ(library.searchText(), "");
    EXPECT_EQ(m_preferences.text(PreferenceKeys::lastSource), folder.path());
}

TEST_F(LibrarySourcesTest, aChosenFolderBecomesTheSourceAndARecentOne) {
    const auto folder = m_card.makeFolder("photos");
    auto& library = start();
    library.chooseFolder();
    ASSERT_EQ(m_chooser.requests.size(), 1U);
    EXPECT_EQ(m_chooser.requests[0].prompt, "Open");
    EXPECT_EQ(m_chooser.requests[0].startFolder, FileURL{"/media"});
    m_chooser.answer(FolderChooser::Choice{FileURL{folder.path() + "/"}, false});
    settle();
    EXPECT_EQ(library.sourceURL(), folder);
    EXPECT_THAT(library.availableRecentFolders(), ElementsAre(folder));
    EXPECT_THAT(*m_preferences.texts(PreferenceKeys::recentFolders), ElementsAre(folder.path()));

    std::filesystem::remove(folder.path());
    library.refreshVolumes();
    settle();
    EXPECT_TRUE(library.availableRecentFolders().empty()) << "a folder that is gone is not offered";
    EXPECT_EQ(m_preferences.texts(PreferenceKeys::recentFolders)->size(), 1U) << "but it may come back";
    library.removeRecentFolder(folder);
    EXPECT_TRUE(m_preferences.texts(PreferenceKeys::recentFolders)->empty());
}

TEST_F(LibrarySourcesTest, aCardOpenedBeforeItWasListedIsNoRecentFolder) {
    auto& library = start();
    library.openRecentFolder(m_card.makeFolder("CARD/DCIM"));
    settle();
    EXPECT_EQ(library.availableRecentFolders().size(), 1U);
    m_volumes.mount(volume(m_card / "CARD", true));
    settle();
    EXPECT_TRUE(library.availableRecentFolders().empty());
    EXPECT_TRUE(m_preferences.texts(PreferenceKeys::recentFolders)->empty());
}

TEST(RecentFoldersTest, keepTheNewestSixWithoutCardsOrDoubles) {
    std::vector<FileURL> recents;
    for (const auto* path : {"/1", "/2", "/3", "/4", "/5", "/6", "/7/"}) {
        recents = withRecentFolder(recents, FileURL{path}, {});
    }
    EXPECT_THAT(recents, ElementsAre(FileURL{"/7"}, FileURL{"/6"}, FileURL{"/5"}, FileURL{"/4"},
                                     FileURL{"/3"}, FileURL{"/2"}));
    recents = withRecentFolder(recents, FileURL{"/4/./"}, {});
    EXPECT_EQ(recents.size(), 6U);
    EXPECT_EQ(recents.front(), FileURL{"/4"});

    VolumeInfo card;
    card.url = FileURL{"/media/card"};
    card.preferredSourceURL = FileURL{"/media/card/DCIM"};
    EXPECT_EQ(withRecentFolder(recents, FileURL{"/media/card/DCIM/"}, {card}), recents);
    EXPECT_EQ(withRecentFolder(recents, FileURL{"/media/card"}, {card}), recents);
    EXPECT_NE(withRecentFolder(recents, FileURL{"/media/card/DCIM/100CAM"}, {card}), recents);
}

} // namespace
} // namespace kelvara
