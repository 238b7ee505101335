#include "views/WindowFrameGuard.h"

#include <gtest/gtest.h>

namespace kelvara {

TEST(WindowFrameGuardTest, aWindowIsShrunkToTheScreenAndMovedOntoIt) {
    const QRect screen{100, 40, 1280, 760};
    EXPECT_EQ(fittedFrame({0, 0, 3000, 2000}, screen), screen);
    EXPECT_EQ(fittedFrame({-300, 60, 800, 600}, screen), QRect(100, 60, 800, 600));
    EXPECT_EQ(fittedFrame({1000, 700, 800, 600}, screen), QRect(580, 200, 800, 600));
    EXPECT_EQ(fittedFrame({200, 100, 800, 600}, screen), QRect(200, 100, 800, 600));
}

} // namespace kelvara
