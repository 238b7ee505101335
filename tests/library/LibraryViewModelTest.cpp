#include "LibraryFixture.h"

#include "library/PreferenceKeys.h"

namespace kelvara {
namespace {

using testing::ElementsAre;

class LibraryViewModelTest : public LibraryFixture {};

TEST_F(LibraryViewModelTest, startsWithDefaultsWhereNothingUsableIsRemembered) {
    m_preferences.setText(PreferenceKeys::sortOrder, "colour");
    m_preferences.setText(PreferenceKeys::sortsAscending, "perhaps");
    m_preferences.setText(PreferenceKeys::recentFolders, "/not/a/list");
    m_preferences.setText(PreferenceKeys::copyDestination, "relative");
    m_preferences.setText(PreferenceKeys::inspectorTab, "");
    const auto& library = start();
    EXPECT_EQ(library.sortOrder(), SortOrder::captureDate);
    EXPECT_TRUE(library.sortsAscending());
    EXPECT_TRUE(library.showsInspector());
    EXPECT_TRUE(library.showsLoupeOverlays());
    EXPECT_EQ(library.inspectorTab(), InspectorTab::info);
    EXPECT_FALSE(library.copiesIntoDateFolders());
    EXPECT_TRUE(library.copyDestination().isEmpty());
    EXPECT_TRUE(library.availableRecentFolders().empty());
}

TEST_F(LibraryViewModelTest, remembersTheViewStateAcrossStarts) {
    {
        auto& library = start();
        library.setSortOrder(SortOrder::fileSize);
        library.setSortsAscending(false);
        library.setShowsLoupeOverlays(false);
        library.toggleInspector(InspectorTab::presets);
        library.toggleExtension("MOV");
        library.setCopiesIntoDateFolders(true);
        library.chooseCopyDestination();
        m_chooser.answer(FolderChooser::Choice{FileURL{"/backup/photos"}, true});
    }
    const auto& library = start();
    EXPECT_EQ(library.sortOrder(), SortOrder::fileSize);
    EXPECT_FALSE(library.sortsAscending());
    EXPECT_FALSE(library.showsLoupeOverlays());
    EXPECT_TRUE(library.showsInspector());
    EXPECT_EQ(library.inspectorTab(), InspectorTab::presets);
    EXPECT_THAT(library.hiddenExtensions(), ElementsAre("MOV"));
    EXPECT_TRUE(library.copiesIntoDateFolders());
    EXPECT_EQ(library.copyDestination(), FileURL{"/backup/photos"});
}

TEST_F(LibraryViewModelTest, theInspectorHidesOnlyWhenItShowsThatTab) {
    auto& library = start();
    library.toggleInspector(InspectorTab::edit);
    EXPECT_TRUE(library.showsInspector());
    EXPECT_EQ(library.inspectorTab(), InspectorTab::edit);
    library.toggleInspector(InspectorTab::edit);
    EXPECT_FALSE(library.showsInspector());
    library.toggleInspector(InspectorTab::info);
    EXPECT_TRUE(library.showsInspector());
}

TEST_F(LibraryViewModelTest, theLoupeNeedsAFocusedPhotoAndSearchingLeavesIt) {
    auto& library = start();
    library.toggleViewMode();
    EXPECT_EQ(library.viewMode(), ViewMode::grid);
    library.focusSearch();
    EXPECT_FALSE(library.wantsSearchFocus()) << "there is nothing to search";

    m_card.write("a.jpg");
    library.setSourceURL(m_card.url());
    settle();
    library.toggleViewMode();
    EXPECT_EQ(library.viewMode(), ViewMode::loupe);
    library.focusSearch();
    EXPECT_EQ(library.viewMode(), ViewMode::grid);
    EXPECT_TRUE(library.wantsSearchFocus());
}

TEST_F(LibraryViewModelTest, theSameZoomCommandTwiceIsTwoRequests) {
    auto& library = start();
    library.requestZoom(ZoomRequest::Command::zoomIn);
    const auto first = library.zoomRequest();
    library.requestZoom(ZoomRequest::Command::zoomIn);
    EXPECT_NE(library.zoomRequest(), first);
    EXPECT_EQ(library.zoomRequest()->command, ZoomRequest::Command::zoomIn);
}

TEST_F(LibraryViewModelTest, upAndDownGoByRowsInTheGridAndByOneInTheLoupe) {
    for (const auto* name : {"a.jpg", "b.jpg", "c.jpg", "d.jpg", "e.jpg"}) m_card.write(name, "x", 1000);
    auto& library = start(m_card.url());
    library.setColumnCount(2);
    library.moveFocus(MoveDirection::down);
    EXPECT_EQ(focusedName(), "c.jpg");
    library.toggleViewMode();
    library.moveFocus(MoveDirection::down);
    EXPECT_EQ(focusedName(), "d.jpg");
}

TEST_F(LibraryViewModelTest, copyingWithoutMarksBeepsAndAsksNothing) {
    auto& library = start();
    library.startCopy();
    EXPECT_EQ(m_desktop.beeps, 1);
    EXPECT_TRUE(m_chooser.requests.empty());
}

} // namespace
} // namespace kelvara
