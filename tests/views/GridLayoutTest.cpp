#include "views/GridLayout.h"

#include <gtest/gtest.h>

namespace kelvara {

TEST(GridLayoutTest, columnsAreWhatFitsBesideThePaddingAndAtLeastOne) {
    EXPECT_EQ(GridLayout(1000, 180, 0, 50).columns(), 5);
    EXPECT_EQ(GridLayout(24 + 3 * 100 + 2 * 8, 100, 0, 50).columns(), 3);
    EXPECT_EQ(GridLayout(24 + 3 * 100 + 2 * 8 - 1, 100, 0, 50).columns(), 2);
    EXPECT_EQ(GridLayout(60, 180, 0, 50).columns(), 1);
    EXPECT_EQ(GridLayout(0, 180, 0, 50).columns(), 1);
}

TEST(GridLayoutTest, everyCellIsFoundAtItsCornersAndTheGapsAreEmpty) {
    const GridLayout layout{1000, 180, 22, 13};
    for (std::size_t index = 0; index < 13; ++index) {
        const auto cell = layout.cell(index);
        EXPECT_EQ(cell.size(), QSize(180, 202));
        EXPECT_EQ(layout.indexAt(cell.topLeft()), index);
        EXPECT_EQ(layout.indexAt(cell.bottomRight()), index);
        EXPECT_EQ(layout.indexAt(cell.bottomRight() + QPoint(1, 0)), std::nullopt);
        EXPECT_EQ(layout.indexAt(cell.bottomRight() + QPoint(0, 1)), std::nullopt);
    }
    EXPECT_EQ(layout.indexAt(layout.cell(13).center()), std::nullopt);
    EXPECT_EQ(layout.indexAt({-5, -5}), std::nullopt);
    EXPECT_EQ(layout.contentHeight(), 12 + 3 * 202 + 2 * 8 + 12);
}

TEST(GridLayoutTest, theVisibleRangeIsWhatTheWindowTouches) {
    const GridLayout layout{416 + 24, 200, 0, 100000}; // two columns, rows of 208
    EXPECT_EQ(layout.visible(0, 12), (IndexRange{0, 2}));
    EXPECT_EQ(layout.visible(0, 220), (IndexRange{0, 2}));
    EXPECT_EQ(layout.visible(0, 221), (IndexRange{0, 4}));
    for (const int top : {0, 5, 211, 212, 219, 220, 5000, layout.contentHeight() - 500}) {
        const auto range = layout.visible(top, 500);
        for (auto index = range.begin > 2 ? range.begin - 2 : 0;
             index < std::min<std::size_t>(range.end + 2, 100000); ++index) {
            const bool touches = layout.cell(index).intersects(QRect(0, top, 440, 500));
            EXPECT_TRUE(!touches || (index >= range.begin && index < range.end)) << top << " " << index;
        }
        EXPECT_LE(range.end - range.begin, 8U);
    }
    EXPECT_EQ(GridLayout(440, 200, 0, 0).visible(0, 500), (IndexRange{0, 0}));
    EXPECT_EQ(layout.visible(layout.contentHeight() + 1000, 500), (IndexRange{}));
}

TEST(GridLayoutTest, showingACellScrollsAsLittleAsNeeded) {
    const GridLayout layout{416 + 24, 200, 0, 20};
    EXPECT_EQ(layout.topThatShows(0, 300, 500), 0);
    EXPECT_EQ(layout.topThatShows(2, 100, 500), 100); // visible already
    EXPECT_EQ(layout.topThatShows(8, 0, 500), layout.cell(8).bottom() + 1 + 8 - 500);
    EXPECT_EQ(layout.topThatShows(19, 0, 500), layout.contentHeight() - 500);
    EXPECT_EQ(layout.topThatShows(4, 0, 100), layout.cell(4).top() - 8); // too tall: its top
}

} // namespace kelvara
