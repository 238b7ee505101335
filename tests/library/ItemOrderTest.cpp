#include "library/ItemOrder.h"
#include "library/ItemFilter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kelvara {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

PhotoItem item(const char* path, std::optional<int> seconds, std::int64_t size = 1) {
    PhotoItem result{FileURL{path}, size, std::nullopt};
    if (seconds) result.creationDate = FileTime{std::chrono::seconds{*seconds}};
    return result;
}

std::vector<std::string> inOrder(const std::vector<PhotoItem>& items, SortOrder order,
                                 bool ascending = true) {
    std::vector<std::string> names;
    for (const auto position : sorted(LibraryIndex{items, {}}, items.size(), order, ascending)) {
        names.emplace_back(items[position].url.name());
    }
    return names;
}

TEST(ItemOrderTest, filesOfAShotShareTheEarliestDateAndStayTogether) {
    const std::vector items{item("/c/b.NEF", 30), item("/c/a.JPG", 20), item("/c/b.JPG", 10),
                            item("/c/z.JPG", 15)};
    EXPECT_THAT(inOrder(items, SortOrder::captureDate), ElementsAre("b.JPG", "b.NEF", "z.JPG", "a.JPG"));
}

TEST(ItemOrderTest, itemsWithoutADateComeLastAndReversedFirst) {
    const std::vector items{item("/c/n1.jpg", {}), item("/c/b.jpg", 2), item("/c/a.jpg", 2),
                            item("/c/n2.jpg", {})};
    EXPECT_THAT(inOrder(items, SortOrder::captureDate), ElementsAre("a.jpg", "b.jpg", "n1.jpg", "n2.jpg"));
    EXPECT_THAT(inOrder(items, SortOrder::captureDate, false),
                ElementsAre("n2.jpg", "n1.jpg", "b.jpg", "a.jpg"));
}

TEST(ItemOrderTest, sizeOrdersByTheLargestFileOfAShot) {
    const std::vector items{item("/c/b.JPG", {}, 5), item("/c/a.JPG", {}, 7), item("/c/b.NEF", {}, 50)};
    EXPECT_THAT(inOrder(items, SortOrder::fileSize), ElementsAre("a.JPG", "b.JPG", "b.NEF"));
}

TEST(ItemOrderTest, equalNamesKeepTheOrderOfTheItems) {
    const std::vector items{item("/c/2/a.jpg", {}), item("/c/1/A.JPG", {}), item("/c/0/IMG_10.jpg", {}),
                            item("/c/0/IMG_9.jpg", {})};
    EXPECT_THAT(inOrder(items, SortOrder::name), ElementsAre("a.jpg", "A.JPG", "IMG_9.jpg", "IMG_10.jpg"));
    EXPECT_THAT(inOrder(items, SortOrder::name, false),
                ElementsAre("IMG_10.jpg", "IMG_9.jpg", "A.JPG", "a.jpg"));
}

class ItemFilterTest : public testing::Test {
protected:
    std::vector<std::string> apply(const ItemFilter& filter) {
        const LibraryIndex index{m_items, {}};
        std::vector<std::string> names;
        for (const auto position :
             filter.apply(sorted(index, m_items.size(), SortOrder::name, true), index)) {
            names.emplace_back(m_items[position].url.name());
        }
        return names;
    }
    std::vector<PhotoItem> m_items{item("/c/a.nef", {}), item("/c/a.JPG", {}), item("/c/B\u00c9la.jpg", {}),
                                   item("/c/d.mov", {})};
    std::set<std::string> m_hidden;
    std::vector<bool> m_checked = std::vector<bool>(4);
    std::unordered_map<FileURL, Rating> m_ratings;
};

TEST_F(ItemFilterTest, hidesExtensionsWhateverTheirCase) {
    m_hidden = {"NEF", "JPG"};
    EXPECT_THAT(apply({m_hidden, false, m_checked, {}, m_ratings, ""}), ElementsAre("d.mov"));
}

TEST_F(ItemFilterTest, aRatingCountsForEveryFileOfTheShot) {
    m_ratings[FileURL{"/c/a.xmp"}] = *Rating::fromRawValue(3);
    const auto three = RatingFilter::atLeast(*Rating::fromRawValue(3));
    EXPECT_THAT(apply({m_hidden, false, m_checked, three, m_ratings, ""}), ElementsAre("a.JPG", "a.nef"));
    EXPECT_THAT(apply({m_hidden, false, m_checked, RatingFilter::unrated(), m_ratings, ""}),
                ElementsAre("B\u00c9la.jpg", "d.mov"));
}

TEST_F(ItemFilterTest, searchesInNamesWithoutCaseAccentsOrOuterSpaces) {
    EXPECT_THAT(apply({m_hidden, false, m_checked, {}, m_ratings, " \tbELA "}), ElementsAre("B\u00c9la.jpg"));
    EXPECT_THAT(apply({m_hidden, false, m_checked, {}, m_ratings, "be\u0301la"}),
                ElementsAre("B\u00c9la.jpg"));
    EXPECT_EQ(apply({m_hidden, false, m_checked, {}, m_ratings, "  "}).size(), 4U);
    // The name as a whole is searched, never across two names.
    EXPECT_THAT(apply({m_hidden, false, m_checked, {}, m_ratings, "nefa"}), IsEmpty());
}

TEST_F(ItemFilterTest, allConditionsMustHold) {
    m_checked = {true, false, false, true}; // a.nef and d.mov
    m_hidden = {"MOV"};
    EXPECT_THAT(apply({m_hidden, true, m_checked, {}, m_ratings, "a"}), ElementsAre("a.nef"));
}

} // namespace
} // namespace kelvara
