#include "text/CaseFolding.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

TEST(CaseFoldingTest, namesThatDifferByCaseAloneBecomeOne) {
    EXPECT_EQ(caseFolded("/Card/IMG_1.CR3"), caseFolded("/card/img_1.cr3"));
    EXPECT_EQ(caseFolded("ÄRGER Σ.jpg"), caseFolded("ärger ς.JPG"));
    EXPECT_NE(caseFolded("a.jpg"), caseFolded("ä.jpg"));
}

TEST(CaseFoldingTest, bytesThatAreNoTextStayApart) {
    EXPECT_NE(caseFolded("caf\xE9.jpg"), caseFolded("caf\xE8.jpg"));
    EXPECT_EQ(caseFolded("CAF\xE9.JPG"), "caf\xE9.jpg");
    EXPECT_EQ(caseFolded("\xF0\x9F"), "\xF0\x9F"); // cut off within a character
}

} // namespace
} // namespace kelvara
