#include "text/NameOrder.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

TEST(NameOrderTest, comparesDigitsAsNumbersAndIgnoresCase) {
    const NameOrder order;
    EXPECT_TRUE(order.precedes("IMG_9.JPG", "IMG_10.JPG"));
    EXPECT_TRUE(order.precedes("Card 2", "Card 10"));
    EXPECT_TRUE(order.precedes("a.jpg", "B.jpg"));
    EXPECT_FALSE(order.precedes("a.jpg", "A.jpg"));
    EXPECT_FALSE(order.precedes("A.jpg", "a.jpg"));
    EXPECT_TRUE(order.precedes("Anna", "Änna"));
    EXPECT_TRUE(order.precedes("Änna", "Bert"));
}

TEST(NameOrderTest, followsTheLanguage) {
    EXPECT_TRUE(NameOrder{}.precedes("Ö", "Z"));
    EXPECT_TRUE(NameOrder{"sv"}.precedes("Z", "Ö"));
}

TEST(NameOrderTest, takesBytesThatAreNoText) {
    const NameOrder order;
    EXPECT_FALSE(order.sortKey("\xff\xfe.jpg").empty());
    EXPECT_EQ(order.sortKey(""), order.sortKey(""));
    EXPECT_TRUE(order.precedes("a", std::string(300, 'b')));
}

TEST(FoldedForSearchTest, seesNeitherCaseNorAccentsNorNormalForm) {
    EXPECT_EQ(foldedForSearch("H\u00c9L\u00e8ne"), "helene");
    EXPECT_EQ(foldedForSearch("e\u0301t\u00e9"), foldedForSearch("\u00c9te\u0301"));
    EXPECT_EQ(foldedForSearch("Stra\u00dfe"), "strasse");
    EXPECT_EQ(foldedForSearch("DSC_0042.NEF"), "dsc_0042.nef");
}

} // namespace
} // namespace kelvara
