#include "LibraryFixture.h"

#include "library/FileRemoval.h"
#include "library/PreferenceKeys.h"
#include "support/FakeFileSystem.h"

namespace kelvara {
namespace {

using Names = std::vector<std::string>;

class LibraryDeleteTest : public LibraryFixture {
protected:
    LibraryViewModel& open(const Names& names, bool isCard = false) {
        for (const auto& name : names) m_card.write("DCIM/" + name, "12345", 1000);
        m_preferences.setText(PreferenceKeys::sortOrder, "name");
        m_preferences.setText(PreferenceKeys::copyDestination, (m_card / "kept").path());
        m_volumes.mounted = {volume(m_card.url(), isCard)};
        return start(m_card / "DCIM");
    }
    FileURL photo(std::string_view name) const { return (m_card / "DCIM").child(name); }
    void mark(const Names& names) {
        for (const auto& name : names) m_library->toggleChecked(photo(name));
    }
    void confirmDelete() {
        m_library->requestDeleteForFocused();
        m_library->confirmDeletion();
        settle();
    }
    Names itemNames() const {
        Names result;
        for (const auto& item : m_library->items()) result.emplace_back(item.url.name());
        return result;
    }
};

TEST_F(LibraryDeleteTest, onlySidecarsOfShotsThatLoseTheirLastFileGoWithThem) {
    const auto url = [](std::string_view name) { return FileURL{"/card"}.child(name); };
    const std::vector<PhotoItem> items{
        {url("a.NEF"), 1, {}}, {url("a.JPG"), 1, {}}, {url("b.NEF"), 1, {}}, {url("c.JPG"), 1, {}}};
    const struct {
        std::vector<FileURL> targets, sidecars;
    } cases[] = {{{url("a.NEF")}, {}},
                 {{url("a.NEF"), url("a.JPG")}, {url("a.xmp")}},
                 {{url("b.NEF")}, {url("b.xmp")}},
                 {{url("a.JPG"), url("c.JPG")}, {url("c.xmp")}},
                 {{}, {}}};
    for (const auto& [targets, sidecars] : cases) EXPECT_EQ(orphanedSidecars(targets, items), sidecars);
}

TEST_F(LibraryDeleteTest, removingGoesOnAfterAFailureAndKeepsTheSidecarsOfWhatIsLeft) {
    FakeFileSystem files;
    for (const auto* name : {"/a.NEF", "/b.NEF", "/c.NEF", "/a.xmp", "/b.xmp"}) files.addFile(name);
    files.refuse(FakeFileSystem::Operation::remove, "/a.NEF");
    const std::vector targets{FileURL{"/a.NEF"}, FileURL{"/b.NEF"}, FileURL{"/c.NEF"}};
    const std::vector sidecars{FileURL{"/a.xmp"}, FileURL{"/b.xmp"}, FileURL{"/c.xmp"}};
    std::stop_source stop;
    files.onOperation = [&](auto, const FileURL& url) {
        if (url == targets[1]) stop.request_stop(); // it is begun, the next is not
    };
    const auto removal = removeFiles(files, m_trash, targets, sidecars, true, stop.get_token());
    EXPECT_EQ(removal.removed, std::vector{targets[1]});
    ASSERT_EQ(removal.failures.size(), 1U);
    EXPECT_EQ(removal.failures[0].url, targets[0]);
    EXPECT_EQ(removal.removedSidecars, std::vector{sidecars[1]});
    EXPECT_EQ(files.paths(), (Names{"/a.NEF", "/a.xmp", "/c.NEF"}));
}

TEST_F(LibraryDeleteTest, nothingHappensBeforeItIsConfirmed) {
    auto& library = open({"a.jpg", "b.jpg"});
    library.requestDeleteForFocused();
    ASSERT_TRUE(library.pendingDeletion());
    EXPECT_EQ(library.pendingDeletion()->size(), 1U);
    library.cancelDeletion();
    library.confirmDeletion();
    settle();
    EXPECT_FALSE(library.pendingDeletion());
    EXPECT_EQ(m_card.files("DCIM").size(), 2U);
    // What was asked about is not there any more when the card goes.
    library.requestDeleteForFocused();
    library.rescan();
    EXPECT_FALSE(library.pendingDeletion());
}

TEST_F(LibraryDeleteTest, theFocusGoesToTheNextPhotoThatIsLeftAndMarksStay) {
    auto& library = open({"a.jpg", "b.jpg", "c.jpg", "d.jpg", "e.jpg", "f.jpg"});
    library.toggleViewMode();
    library.setFocusedID(photo("b.jpg"));
    mark({"d.jpg", "f.jpg"});
    confirmDelete(); // not marked, so alone
    EXPECT_EQ(visibleNames(), (Names{"a.jpg", "c.jpg", "d.jpg", "e.jpg", "f.jpg"}));
    EXPECT_EQ(focusedName(), "c.jpg");
    EXPECT_EQ(library.viewMode(), ViewMode::loupe);
    EXPECT_EQ(library.checkedIDs().size(), 2U);
    EXPECT_EQ(library.checkedBytes(), 10);

    library.setRating(*Rating::fromRawValue(4), photo("e.jpg"));
    library.setFocusedID(photo("d.jpg"));
    confirmDelete();
    EXPECT_EQ(visibleNames(), (Names{"a.jpg", "c.jpg", "e.jpg"}));
    EXPECT_EQ(focusedName(), "e.jpg");
    EXPECT_EQ(library.rating(photo("e.jpg")).rawValue(), 4);
    EXPECT_TRUE(library.checkedIDs().empty());
    confirmDelete();
    EXPECT_EQ(focusedName(), "c.jpg"); // nothing comes after the last
    mark({"a.jpg", "c.jpg"});
    library.setShowsOnlyChecked(true);
    confirmDelete();
    EXPECT_TRUE(library.items().empty());
    EXPECT_TRUE(library.focusedID().isEmpty());
    EXPECT_EQ(library.viewMode(), ViewMode::grid);
    EXPECT_EQ(m_trash.names().size(), 6U);
    EXPECT_EQ(m_cacheClearings, 0);
}

TEST_F(LibraryDeleteTest, cardsEraseUnlessTheSettingSaysOtherwiseAndFoldersNever) {
    auto& library = open({"a.jpg", "b.jpg", "c.jpg"}, true);
    EXPECT_TRUE(library.deletesPermanently());
    library.requestDeleteForFocused();
    m_preferences.setBoolean(PreferenceKeys::cardDeleteErases, false);
    EXPECT_TRUE(library.deletesPermanently()); // as the sheet says
    library.confirmDeletion();
    settle();
    EXPECT_EQ(m_trash.names(), Names{});
    EXPECT_FALSE(library.deletesPermanently());
    confirmDelete();
    EXPECT_EQ(m_trash.names(), Names{"b.jpg"});
    m_preferences.remove(PreferenceKeys::cardDeleteErases);

    library.setSourceURL(m_card.url());
    settle();
    EXPECT_TRUE(library.deletesPermanently());
    library.setSourceURL(m_card / "DCIM/100");
    EXPECT_FALSE(library.deletesPermanently()); // a folder, though it lies on a card
    m_volumes.mounted = {volume(m_card.url(), false)};
    library.setSourceURL(m_card / "DCIM");
    library.refreshVolumes();
    settle();
    EXPECT_FALSE(library.deletesPermanently()); // a fixed drive
}

TEST_F(LibraryDeleteTest, pairedFilesGoAlongWhereWantedAndTheSidecarWithTheLast) {
    open({"a.NEF", "a.JPG", "a.xmp", "b.NEF", "b.JPG", "b.xmp"});
    auto& library = *m_library;
    library.setFocusedID(photo("a.NEF"));
    confirmDelete();
    EXPECT_EQ(m_card.files("DCIM"), (Names{"a.JPG", "a.xmp", "b.JPG", "b.NEF", "b.xmp"}));
    library.setDeletesPairedFiles(true);
    EXPECT_EQ(m_preferences.boolean("deletesPairedFiles"), true);
    library.setRating(*Rating::fromRawValue(3), photo("b.NEF")); // on its way to the sidecar
    library.setFocusedID(photo("b.JPG"));
    library.requestDeleteForFocused();
    EXPECT_EQ(library.pendingDeletion()->size(), 1U);
    EXPECT_EQ(library.deletionTargets().size(), 2U);
    library.confirmDeletion();
    library.setRating(*Rating::fromRawValue(5), photo("b.NEF")); // too late
    settle();
    EXPECT_EQ(m_card.files("DCIM"), (Names{"a.JPG", "a.xmp"}));
    EXPECT_EQ(itemNames(), Names{"a.JPG"});
    EXPECT_TRUE(start(m_card / "DCIM").deletesPairedFiles());
}

TEST_F(LibraryDeleteTest, whatFailsStaysAndOneSentenceTellsOfAll) {
    auto& library = open({"a.NEF", "b.jpg", "c.jpg", "d.jpg", "e.jpg"});
    for (const auto* name : {"a.NEF", "c.jpg", "e.jpg"}) m_trash.refuse(photo(name));
    mark({"a.NEF", "b.jpg", "c.jpg", "d.jpg", "e.jpg"});
    confirmDelete();
    EXPECT_EQ(library.deleteError(), "Couldn't delete a.NEF (and 2 more): Permission denied");
    EXPECT_EQ(visibleNames(), (Names{"a.NEF", "c.jpg", "e.jpg"}));
    EXPECT_EQ(library.checkedIDs().size(), 3U);
    EXPECT_EQ(focusedName(), "a.NEF");
    library.clearDeleteError();
    library.deleteItems(std::vector{library.items()[0]});
    settle();
    EXPECT_EQ(library.deleteError(), "Couldn't delete a.NEF: Permission denied");
}

TEST_F(LibraryDeleteTest, aDeletionACopyAndAnEjectionKeepOutOfEachOthersWay) {
    auto& library = open({"a.jpg", "b.jpg"});
    mark({"a.jpg"});
    library.startCopy();
    library.requestDeleteForFocused();
    EXPECT_FALSE(library.pendingDeletion());
    EXPECT_EQ(library.deleteError(),
              "A copy is in progress. Wait for it to finish, or cancel it, before deleting.");
    library.clearDeleteError();
    settle();
    library.dismissCopy();

    library.requestDeleteForFocused();
    library.confirmDeletion();
    EXPECT_EQ(library.deletingCount(), 1U);
    library.startCopy();
    EXPECT_TRUE(std::holds_alternative<CopyIdle>(library.copyState()));
    library.requestDeleteForFocused(); // one at a time
    EXPECT_FALSE(library.pendingDeletion());
    EXPECT_EQ(m_desktop.beeps, 2);
    m_volumes.mount(volume(m_card.url(), true));
    library.eject(volume(m_card.url(), true));
    m_main.runAll();
    EXPECT_TRUE(m_volumes.ejected.empty()); // waits for it
    settle();
    EXPECT_FALSE(library.isDeleting());
    EXPECT_EQ(m_volumes.ejected.size(), 1U);
    library.requestDeleteForFocused();
    EXPECT_FALSE(library.pendingDeletion());
    EXPECT_EQ(m_card.files("DCIM"), Names{"b.jpg"});
}

TEST_F(LibraryDeleteTest, aListThatWasScannedMeanwhileLosesTheFilesToo) {
    for (const auto* moment : {"after the deletion", "before it", "elsewhere"}) {
        auto& library = open({"a.jpg", "b.jpg", "c.jpg"});
        const auto scan = [&] { m_background.runAll(); };
        const auto removal = [&] { m_sidecarWrites.runAll(); };
        library.requestDeleteForFocused();
        library.confirmDeletion();
        if (moment == std::string_view{"elsewhere"}) library.setSourceURL(m_card / "other");
        library.rescan();
        scan(); // sees the file
        if (moment == std::string_view{"before it"}) m_main.runAll();
        removal();
        settle();
        const auto expected = moment == std::string_view{"elsewhere"} ? Names{} : Names{"b.jpg", "c.jpg"};
        EXPECT_EQ(itemNames(), expected) << moment;
        EXPECT_EQ(library.deleteError(), "") << moment;
        EXPECT_FALSE(library.isDeleting());
    }
    // A scan that is asked for its result only after the deletion has told its own.
    auto& library = open({"a.jpg", "b.jpg", "c.jpg"});
    library.requestDeleteForFocused();
    library.confirmDeletion();
    m_sidecarWrites.runAll();
    m_card.write("DCIM/a.jpg", "12345", 1000); // as if the scan had passed by before
    library.rescan();
    m_main.runAll();
    settle();
    EXPECT_EQ(itemNames(), (Names{"b.jpg", "c.jpg"}));
    library.rescan();
    settle();
    EXPECT_EQ(itemNames().size(), 3U); // only that scan is mistrusted
}

TEST_F(LibraryDeleteTest, aCardThatIsPulledEndsTheDeletionBeforeAnotherTakesItsPlace) {
    auto& library = open({"a.jpg", "b.jpg"}, true);
    mark({"a.jpg", "b.jpg"});
    library.requestDeleteForFocused();
    library.confirmDeletion();
    EXPECT_EQ(library.deletingCount(), 2U);
    m_volumes.unmount(m_card.url());
    EXPECT_EQ(library.deletingCount(), 0U); // of what is shown now
    settle();
    EXPECT_EQ(m_card.files("DCIM").size(), 2U);
    EXPECT_EQ(library.deleteError(), "");
    EXPECT_FALSE(library.isDeleting());
}

TEST_F(LibraryDeleteTest, aDeletionIsFinishedWhenTheLibraryGoes) {
    open({"a.jpg", "b.jpg"});
    m_library->requestDeleteForFocused();
    m_library->confirmDeletion();
    m_library.reset();
    settle();
    EXPECT_EQ(m_card.files("DCIM"), Names{"b.jpg"});
}

TEST_F(LibraryDeleteTest, itIsKnownWhatThisSessionCopied) {
    auto& library = open({"a.jpg", "b.NEF", "c.jpg"});
    EXPECT_EQ(library.notCopiedCount(library.items()), std::nullopt);
    m_card.write("DCIM/b.xmp", "stars");
    m_card.makeFolder("kept/b.NEF.xmp.partial"); // the photo comes, its rating does not: that is a failure
    mark({"a.jpg", "b.NEF"});
    library.startCopy();
    settle();
    EXPECT_EQ(library.notCopiedCount(library.items()), 2U);
    m_card.write("DCIM/a.jpg", "another", 2000);
    library.rescan();
    settle();
    EXPECT_EQ(library.notCopiedCount(library.items()), 3U);
    library.setSourceURL(m_card / "other");
    EXPECT_EQ(library.notCopiedCount(library.items()), std::nullopt);
}

} // namespace
} // namespace kelvara
