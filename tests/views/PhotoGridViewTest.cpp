#include "views/PhotoGridView.h"
#include "views/PictureFixture.h"

#include <QAccessible>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

namespace kelvara {

namespace {

class PhotoGridViewTest : public PictureFixture {
protected:
    PhotoGridView& show(int photos, QSize size = {640, 500}) {
        addPhotos(photos);
        open();
        m_grid = std::make_unique<PhotoGridView>(*m_library, m_sources, m_metadata, m_preferences);
        m_grid->setThumbnailSize(120);
        m_grid->resize(size);
        m_grid->show();
        QCoreApplication::processEvents();
        return *m_grid;
    }
    void click(std::size_t index, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(m_grid->viewport(), Qt::LeftButton, modifiers, m_grid->cellRect(index).center());
    }
    void clickMark(std::size_t index) {
        QTest::mouseClick(m_grid->viewport(), Qt::LeftButton, {},
                          m_grid->cellRect(index).topLeft() + QPoint{16, 16});
    }
    [[nodiscard]] bool isWhole(std::size_t index) const {
        return m_grid->viewport()->rect().contains(m_grid->cellRect(index));
    }

    std::unique_ptr<PhotoGridView> m_grid;
};

} // namespace

TEST_F(PhotoGridViewTest, reportsItsColumnsForNavigation) {
    const auto& grid = show(30);
    EXPECT_GT(m_library->columnCount(), 1);
    EXPECT_EQ(m_library->columnCount(), grid.gridLayout().columns());
    m_grid->resize(300, 500);
    QCoreApplication::processEvents();
    EXPECT_EQ(m_library->columnCount(), GridLayout(m_grid->viewport()->width(), 120, 0, 30).columns());
}

TEST_F(PhotoGridViewTest, aClickFocusesAndAShiftClickMarksUpToThePhoto) {
    show(30);
    click(2);
    EXPECT_EQ(m_library->focusedIndex(), 2U);
    EXPECT_TRUE(m_library->checkedIDs().empty());
    click(5, Qt::ShiftModifier);
    EXPECT_EQ(m_library->checkedIDs().size(), 4U);
    EXPECT_EQ(m_library->focusedIndex(), 5U);
    click(4, Qt::ShiftModifier); // backwards
    EXPECT_EQ(m_library->checkedIDs().size(), 4U);
    EXPECT_EQ(m_library->focusedIndex(), 4U);
}

TEST_F(PhotoGridViewTest, theMarkButtonMarksWithoutMovingTheFocus) {
    show(30);
    clickMark(3);
    EXPECT_TRUE(m_library->isChecked(photo(3)));
    EXPECT_EQ(m_library->focusedIndex(), 0U);
    clickMark(3);
    EXPECT_FALSE(m_library->isChecked(photo(3)));
    // Let go elsewhere, it does nothing.
    const auto mark = m_grid->cellRect(3).topLeft() + QPoint{16, 16};
    QTest::mousePress(m_grid->viewport(), Qt::LeftButton, {}, mark);
    QTest::mouseRelease(m_grid->viewport(), Qt::LeftButton, {}, m_grid->cellRect(4).center());
    EXPECT_TRUE(m_library->checkedIDs().empty());
}

TEST_F(PhotoGridViewTest, aDoubleClickOpensThePhoto) {
    show(30);
    QTest::mouseDClick(m_grid->viewport(), Qt::LeftButton, {}, m_grid->cellRect(4).center());
    EXPECT_EQ(m_library->focusedIndex(), 4U);
    EXPECT_EQ(m_library->viewMode(), ViewMode::loupe);
}

TEST_F(PhotoGridViewTest, theFocusedPhotoIsScrolledIntoView) {
    show(200);
    m_library->setFocusedID(photo(150));
    EXPECT_TRUE(isWhole(150));
    const auto top = m_grid->verticalScrollBar()->value();
    m_library->setFocusedID(photo(150 - static_cast<std::size_t>(m_library->columnCount())));
    EXPECT_EQ(m_grid->verticalScrollBar()->value(), top); // was visible already
    m_library->setFocusedID(photo(0));
    EXPECT_EQ(m_grid->verticalScrollBar()->value(), 0);
}

TEST_F(PhotoGridViewTest, keysMoveByPagesAndToTheEnds) {
    show(200);
    QTest::keyClick(m_grid.get(), Qt::Key_End);
    EXPECT_EQ(m_library->focusedIndex(), 199U);
    EXPECT_TRUE(isWhole(199));
    QTest::keyClick(m_grid.get(), Qt::Key_Home);
    EXPECT_EQ(m_library->focusedIndex(), 0U);
    QTest::keyClick(m_grid.get(), Qt::Key_PageDown);
    const auto page = *m_library->focusedIndex();
    EXPECT_EQ(page % static_cast<std::size_t>(m_library->columnCount()), 0U);
    EXPECT_GT(page, 0U);
    QTest::keyClick(m_grid.get(), Qt::Key_PageUp);
    EXPECT_EQ(m_library->focusedIndex(), 0U);
}

TEST_F(PhotoGridViewTest, anotherThumbnailSizeOrWidthKeepsTheFocusedPhotoInPlace) {
    show(200);
    m_library->setFocusedID(photo(100));
    m_grid->verticalScrollBar()->setValue(m_grid->verticalScrollBar()->value() + 150);
    ASSERT_TRUE(isWhole(100));
    const auto offset = m_grid->cellRect(100).top();
    m_grid->setThumbnailSize(96);
    EXPECT_EQ(m_grid->cellRect(100).top(), offset);
    m_grid->resize(480, 500);
    QCoreApplication::processEvents();
    EXPECT_EQ(m_grid->cellRect(100).top(), offset);
    m_grid->setThumbnailSize(300);
    EXPECT_TRUE(isWhole(100));
}

TEST_F(PhotoGridViewTest, theFocusedPhotoStaysInSightWhenTheWindowShrinks) {
    show(200);
    m_library->setFocusedID(photo(100)); // comes in at the bottom
    for (const auto& size : {QSize{640, 330}, QSize{420, 330}, QSize{300, 200}}) {
        m_grid->resize(size);
        QCoreApplication::processEvents();
        EXPECT_TRUE(isWhole(100)) << size.width() << " x " << size.height();
    }
}

TEST_F(PhotoGridViewTest, theWheelScrollsByPixels) {
    show(200);
    const auto at = m_grid->viewport()->rect().center();
    QWheelEvent precise{at, m_grid->mapToGlobal(at), {0, -7}, {0, -20}, Qt::NoButton,
                        {}, Qt::NoScrollPhase,       false};
    QCoreApplication::sendEvent(m_grid->viewport(), &precise);
    EXPECT_EQ(m_grid->verticalScrollBar()->value(), 7);
}

TEST_F(PhotoGridViewTest, asksOnlyForWhatIsVisibleAndWithdrawsWhatScrolledAway) {
    auto& grid = show(200);
    EXPECT_TRUE(grid.isLoading());
    grid.verticalScrollBar()->setValue(grid.verticalScrollBar()->maximum());
    settlePictures();
    EXPECT_FALSE(grid.isLoading());
    EXPECT_EQ(m_thumbnails.largestCachedThumbnail(photo(0)), nullptr);
    EXPECT_NE(m_thumbnails.largestCachedThumbnail(photo(199)), nullptr);
}

TEST_F(PhotoGridViewTest, settlesWithAFileThatCannotBeRead) {
    m_card.write("broken.jpg", "no picture");
    auto& grid = show(1);
    settlePictures();
    EXPECT_FALSE(grid.isLoading());
    grid.hide();
    EXPECT_FALSE(grid.isLoading());
}

TEST_F(PhotoGridViewTest, assistiveToolsSeeEachPhotoAndCanMarkAndOpenIt) {
    auto& grid = show(30);
    auto* list = QAccessible::queryAccessibleInterface(&grid);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->role(), QAccessible::List);
    ASSERT_EQ(list->childCount(), 30);
    auto* cell = list->child(3);
    EXPECT_EQ(list->child(3), cell);
    EXPECT_EQ(list->indexOfChild(cell), 3);
    EXPECT_EQ(cell->text(QAccessible::Name).toStdString(), photo(3).name());
    EXPECT_EQ(cell->text(QAccessible::Value), QString{});
    const auto centre = grid.viewport()->mapToGlobal(grid.cellRect(3).center());
    EXPECT_EQ(list->childAt(centre.x(), centre.y()), cell);
    EXPECT_TRUE(cell->rect().contains(centre));

    auto* actions = cell->actionInterface();
    EXPECT_EQ(actions->localizedActionName(actions->toggleAction()), QStringLiteral("Mark for Copy"));
    actions->doAction(actions->toggleAction());
    EXPECT_TRUE(m_library->isChecked(photo(3)));
    EXPECT_TRUE(cell->state().checked);
    EXPECT_EQ(actions->localizedActionName(actions->toggleAction()), QStringLiteral("Unmark for Copy"));
    m_library->setRating(*Rating::fromRawValue(3), photo(3));
    edit(photo(3), 1);
    EXPECT_EQ(cell->text(QAccessible::Value), QStringLiteral("Marked, 3 of 5 stars, Edited"));
    actions->doAction(actions->pressAction());
    EXPECT_EQ(m_library->focusedIndex(), 3U);
    EXPECT_EQ(m_library->viewMode(), ViewMode::loupe);

    // A cell stays with its photo, and is nothing once that is filtered away.
    m_library->setSearchText(std::string{photo(4).stem()});
    EXPECT_EQ(list->childCount(), 1);
    EXPECT_FALSE(cell->isValid());
    EXPECT_EQ(list->indexOfChild(cell), -1);
}

TEST_F(PhotoGridViewTest, readsTheExposureOfWhatIsOnScreenAndNothingElse) {
    auto& grid = show(200);
    const auto onScreen = [&] {
        return static_cast<int>(grid.visibleRange().end - grid.visibleRange().begin);
    };
    settlePictures();
    EXPECT_EQ(m_metadataReads, onScreen());
    EXPECT_FALSE(grid.isLoading());
    // What only passed by is not read.
    auto* bar = grid.verticalScrollBar();
    for (const int part : {4, 3, 2, 1}) bar->setValue(bar->maximum() / part);
    EXPECT_TRUE(grid.isLoading());
    const auto before = m_metadataReads;
    settlePictures();
    EXPECT_EQ(m_metadataReads, before + onScreen());
    // Nor what cells without text don't show.
    const auto all = m_metadataReads;
    m_preferences.setBoolean("gridShowsInfo", false);
    grid.readPreferences();
    bar->setValue(bar->maximum() / 2);
    settlePictures();
    EXPECT_EQ(m_metadataReads, all);
}

} // namespace kelvara
