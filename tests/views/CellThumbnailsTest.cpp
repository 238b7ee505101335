#include "views/CellThumbnails.h"

#include "views/PictureFixture.h"

namespace kelvara {
namespace {

/// A grey photo in a cell.
class CellThumbnailsTest : public PictureFixture {
protected:
    CellThumbnailsTest() {
        addPhoto("a.jpg", QColor{100, 100, 100});
        open();
        settle();
    }
    void show() { m_cells.show({photo(0)}, 200); }
    [[nodiscard]] int grey() const { return qGray(picture().pixel(10, 10)); }
    [[nodiscard]] const QImage& picture() const { return m_cells[photo(0)].picture; }

    int m_changes = 0;
    CellThumbnails m_cells{m_sources, [this](const auto&) { ++m_changes; }};
};

TEST_F(CellThumbnailsTest, followEditsWithoutAGap) {
    show();
    settlePictures();
    EXPECT_EQ(grey(), 100);
    EXPECT_FALSE(m_cells.isEdited(photo(0)));
    edit(photo(0).withExtension("NEF"), 1); // of the same shot
    EXPECT_TRUE(m_cells.isEdited(photo(0)));
    EXPECT_FALSE(m_cells.isEdited(photo(0).withExtension("MOV")));
    EXPECT_TRUE(m_cells.isLoading());
    EXPECT_EQ(grey(), 100) << "until the new one is there";
    settlePictures();
    EXPECT_FALSE(m_cells.isLoading());
    EXPECT_GT(grey(), 125);
    m_changes = 0;
    m_edits.setAdjustments({}, photo(0));
    EXPECT_EQ(grey(), 100);
    edit(photo(0).parent().child("other.jpg"), 2);
    EXPECT_EQ(m_changes, 1);
}

TEST_F(CellThumbnailsTest, drawOneAtATimeAndTheNewestLast) {
    show();
    settlePictures();
    for (const double exposure : {0.5, 1.0, -2.0}) {
        edit(photo(0), exposure);
        EXPECT_EQ(m_thumbnailDrawing.pending(), 1U);
    }
    m_thumbnailDrawing.runOne();
    m_main.runAll();
    EXPECT_GT(grey(), 100);
    settlePictures();
    EXPECT_LT(grey(), 60);
    // Back where it was while another is drawn.
    edit(photo(0), 3);
    edit(photo(0), 0);
    settlePictures();
    EXPECT_EQ(grey(), 100);
}

TEST_F(CellThumbnailsTest, anEditedPhotoIsNeverShownWithoutItsEdits) {
    edit(photo(0), 1);
    show();
    m_decoding.runAll();
    m_main.runAll();
    EXPECT_TRUE(picture().isNull());
    EXPECT_FALSE(m_cells[photo(0)].isFinal);
    settlePictures();
    EXPECT_GT(grey(), 125);
    EXPECT_TRUE(m_cells[photo(0)].isFinal);
    m_cells.show({}, 200);
    show();
    EXPECT_GT(grey(), 125) << "at once when it comes back";
    m_cells.show({}, 200);
    edit(photo(0), 2);
    show();
    m_cells.show({}, 200);
    m_thumbnailDrawing.runAll();
    m_main.runAll();
    show();
    EXPECT_TRUE(picture().isNull()) << "what scrolled away isn't drawn";
}

} // namespace
} // namespace kelvara
