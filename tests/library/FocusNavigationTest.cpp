#include "library/FocusNavigation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kelvara {
namespace {

using testing::ElementsAre;

TEST(FocusNavigationTest, movesByOneAndByRowAndStaysAtTheEnds) {
    // 0 1 2 3
    // 4 5 6 7
    // 8 9
    constexpr std::size_t count = 10;
    constexpr std::size_t columns = 4;
    EXPECT_EQ(focusTarget(0, count, columns, MoveDirection::left), std::nullopt);
    EXPECT_EQ(focusTarget(4, count, columns, MoveDirection::left), 3U);
    EXPECT_EQ(focusTarget(9, count, columns, MoveDirection::right), std::nullopt);
    EXPECT_EQ(focusTarget(2, count, columns, MoveDirection::up), std::nullopt);
    EXPECT_EQ(focusTarget(9, count, columns, MoveDirection::up), 5U);
    EXPECT_EQ(focusTarget(1, count, columns, MoveDirection::down), 5U);
}

TEST(FocusNavigationTest, downAboveAShorterLastRowGoesToTheLastItem) {
    EXPECT_EQ(focusTarget(6, 10, 4, MoveDirection::down), 9U);
    EXPECT_EQ(focusTarget(7, 10, 4, MoveDirection::down), 9U);
    EXPECT_EQ(focusTarget(8, 10, 4, MoveDirection::down), std::nullopt);
    EXPECT_EQ(focusTarget(5, 8, 4, MoveDirection::down), std::nullopt);
}

TEST(FocusNavigationTest, neighboursComeNearestFirstTheNextBeforeThePrevious) {
    EXPECT_THAT(neighbourIndices(5, 10, 2), ElementsAre(6, 4, 7, 3));
    EXPECT_THAT(neighbourIndices(0, 10, 2), ElementsAre(1, 2));
    EXPECT_THAT(neighbourIndices(9, 10, 2), ElementsAre(8, 7));
    EXPECT_THAT(neighbourIndices(0, 1, 3), ElementsAre());
}

} // namespace
} // namespace kelvara
