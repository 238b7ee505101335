#include "LibraryFixture.h"

#include "library/PreferenceKeys.h"

namespace kelvara {
namespace {

class LibraryCopyTest : public LibraryFixture {
protected:
    LibraryViewModel& startWithThreePhotos() {
        for (const auto* name : {"a.jpg", "b.jpg", "c.NEF"})
            m_card.write(std::string{"card/"} + name, "12345", 1000);
        m_preferences.setText(PreferenceKeys::copyDestination, destination().path());
        return start(m_card / "card");
    }
    FileURL destination() { return m_card / "kept"; }
    FileURL photo(std::string_view name) { return (m_card / "card").child(name); }
};

TEST_F(LibraryCopyTest, copiesTheMarkedFilesAndEndsInAReport) {
    auto& library = startWithThreePhotos();
    library.toggleChecked(photo("a.jpg"));
    library.toggleChecked(photo("c.NEF"));
    library.startCopy();
    const auto* beginning = std::get_if<CopyService::Progress>(&library.copyState());
    ASSERT_NE(beginning, nullptr);
    EXPECT_EQ(beginning->totalFiles, 2); // known before anything is planned
    EXPECT_EQ(beginning->totalBytes, 10);
    library.startCopy(); // one at a time
    settle();
    const auto* report = std::get_if<CopyService::Report>(&library.copyState());
    ASSERT_NE(report, nullptr);
    EXPECT_EQ(report->copied, 2);
    EXPECT_EQ(report->copiedBytes, 10);
    EXPECT_EQ(m_card.files("kept"), (std::vector<std::string>{"a.jpg", "c.NEF"}));
    EXPECT_EQ(m_analytics.events, std::vector<UsageEvent>{PhotosCopied{.count = 2}});
    library.startCopy(); // which finds them there
    settle();
    EXPECT_EQ(m_analytics.events.size(), 1U);
    library.dismissCopy();
    EXPECT_TRUE(std::holds_alternative<CopyIdle>(library.copyState()));
}

TEST_F(LibraryCopyTest, asksForAFolderFirstAndStopsWhenThereIsNone) {
    auto& library = startWithThreePhotos();
    m_preferences.remove(PreferenceKeys::copyDestination);
    auto& fresh = start(m_card / "card");
    fresh.toggleChecked(photo("a.jpg"));
    fresh.startCopy();
    ASSERT_EQ(m_chooser.requests.size(), 1U);
    EXPECT_EQ(m_chooser.requests[0].startFolder, m_desktop.picturesFolder());
    m_chooser.answer(std::nullopt);
    EXPECT_TRUE(std::holds_alternative<CopyIdle>(fresh.copyState()));
    fresh.startCopy();
    m_chooser.answer(FolderChooser::Choice{destination(), true});
    settle();
    ASSERT_TRUE(std::holds_alternative<CopyService::Report>(fresh.copyState()));
    EXPECT_EQ(m_card.files("kept"), (std::vector<std::string>{"1970-01-01/a.jpg"}));
    static_cast<void>(library);
}

TEST_F(LibraryCopyTest, aDestinationInsideTheCardIsRefused) {
    auto& library = startWithThreePhotos();
    library.toggleChecked(photo("a.jpg"));
    library.chooseCopyDestination();
    m_chooser.answer(FolderChooser::Choice{photo("kept"), false});
    library.startCopy();
    settle();
    const auto* failed = std::get_if<CopyFailed>(&library.copyState());
    ASSERT_NE(failed, nullptr);
    EXPECT_EQ(failed->message, "Choose a destination outside the folder you're copying from.");
    EXPECT_FALSE(TemporaryFolder::exists(photo("kept")));
}

TEST_F(LibraryCopyTest, aCopyStoppedBeforeItsFirstFileIsCancelled) {
    auto& library = startWithThreePhotos();
    library.toggleChecked(photo("a.jpg"));
    library.startCopy();
    EXPECT_FALSE(library.isStoppingCopy());
    library.cancelCopy();
    EXPECT_TRUE(library.isStoppingCopy());
    settle();
    EXPECT_FALSE(library.isStoppingCopy());
    const auto* report = std::get_if<CopyService::Report>(&library.copyState());
    ASSERT_NE(report, nullptr);
    EXPECT_TRUE(report->wasCancelled);
    EXPECT_EQ(report->destination, destination());
    EXPECT_EQ(report->copied, 0);
}

TEST_F(LibraryCopyTest, aCopyThatBeginsBeforeTheDiskIsEjectedKeepsItIn) {
    auto& library = startWithThreePhotos();
    library.toggleChecked(photo("a.jpg"));
    library.eject(volume(m_card / "card", true));
    library.startCopy();
    m_sidecarWrites.runAll();
    m_main.runAll();
    EXPECT_TRUE(m_volumes.ejected.empty());
    EXPECT_TRUE(library.ejectingVolumeID().isEmpty());
    EXPECT_TRUE(library.ejectError().starts_with("A copy is in progress."));
}

TEST_F(LibraryCopyTest, ejectingWhileACopyRunsChangesNothing) {
    auto& library = startWithThreePhotos();
    library.toggleChecked(photo("a.jpg"));
    library.startCopy();
    library.eject(volume(m_card / "card", true));
    EXPECT_TRUE(m_volumes.ejected.empty());
    EXPECT_EQ(library.ejectError(),
              "A copy is in progress. Wait for it to finish, or cancel it, before ejecting.");
}

TEST_F(LibraryCopyTest, pullingTheCardInterruptsTheCopy) {
    auto& library = startWithThreePhotos();
    library.toggleChecked(photo("a.jpg"));
    library.startCopy();
    m_volumes.unmount(m_card / "card");
    EXPECT_TRUE(library.sourceURL().isEmpty());
    settle();
    EXPECT_TRUE(library.copyInterruption().starts_with("The card was removed during the copy."));
    EXPECT_TRUE(TemporaryFolder::exists(photo("a.jpg")));
    EXPECT_FALSE(std::holds_alternative<CopyService::Progress>(library.copyState()));
}

TEST_F(LibraryCopyTest, pullingTheDestinationDriveInterruptsTheCopyToo) {
    auto& library = startWithThreePhotos();
    library.toggleChecked(photo("a.jpg"));
    library.startCopy();
    m_volumes.unmount(destination());
    EXPECT_FALSE(library.sourceURL().isEmpty());
    EXPECT_TRUE(library.copyInterruption().starts_with("The destination drive was disconnected"));
    settle();
    EXPECT_FALSE(std::holds_alternative<CopyService::Progress>(library.copyState()));
}

TEST_F(LibraryCopyTest, whatIsPulledIsJudgedByTheCopyThatRunsNotByWhatIsChosenMeanwhile) {
    auto& library = startWithThreePhotos();
    m_card.write("other/x.jpg", "1");
    library.toggleChecked(photo("a.jpg"));
    library.startCopy();
    library.setSourceURL(m_card / "other");
    library.chooseCopyDestination();
    m_chooser.answer(FolderChooser::Choice{m_card / "elsewhere", false});
    m_volumes.unmount(m_card / "other");
    m_volumes.unmount(m_card / "elsewhere");
    EXPECT_EQ(library.copyInterruption(), "");
    m_volumes.unmount(m_card / "card");
    m_volumes.unmount(destination()); // with the same plug
    EXPECT_TRUE(library.copyInterruption().starts_with("The card was removed during the copy."));
    EXPECT_TRUE(library.isStoppingCopy());
}

TEST_F(LibraryCopyTest, theReportUnmarksWhatWasCopiedAndNothingElse) {
    auto& library = startWithThreePhotos();
    library.toggleChecked(photo("a.jpg"));
    library.toggleChecked(photo("c.NEF"));
    library.startCopy();
    library.toggleChecked(photo("b.jpg"));
    library.toggleChecked(photo("c.NEF"));
    settle();
    EXPECT_TRUE(library.copiedMarkedPhotos());
    library.unmarkCopiedPhotos();
    EXPECT_FALSE(library.copiedMarkedPhotos());
    EXPECT_THAT(library.checkedIDs(), testing::ElementsAre(photo("b.jpg")));
}

TEST_F(LibraryCopyTest, verifyingIsRememberedAndBelongsToTheCopyThatBeganWithIt) {
    auto& library = startWithThreePhotos();
    EXPECT_FALSE(library.verifiesCopies());
    library.setVerifiesCopies(true);
    library.toggleChecked(photo("a.jpg"));
    library.startCopy();
    library.setVerifiesCopies(false);
    EXPECT_TRUE(library.isCopyVerified());
    settle();
    EXPECT_TRUE(library.isCopyVerified());
    library.setVerifiesCopies(true);
    EXPECT_TRUE(start().verifiesCopies());
}

} // namespace
} // namespace kelvara
