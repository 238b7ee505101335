#include "model/PhotoItem.h"
#include "model/Rating.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

TEST(MediaKindTest, knowsExactlyTheMediaExtensionsInAnyCase) {
    for (const auto extension : rawExtensions) EXPECT_EQ(mediaKind(extension), MediaKind::raw) << extension;
    for (const auto extension : videoExtensions)
        EXPECT_EQ(mediaKind(extension), MediaKind::video) << extension;
    EXPECT_EQ(mediaKind("Nef"), MediaKind::raw);
    EXPECT_EQ(mediaKind("JPEG"), MediaKind::jpeg);
    EXPECT_EQ(mediaKind("HIF"), MediaKind::heif);
    EXPECT_EQ(mediaKind("M2TS"), MediaKind::video);
    for (const auto* extension : {"", "jpe", "tif", "png", "xmp", "thm", "jpg ", "jpegs"}) {
        EXPECT_EQ(mediaKind(extension), std::nullopt) << extension;
    }
}

TEST(RatingTest, takesZeroToFiveStarsOnly) {
    EXPECT_EQ(Rating::fromRawValue(0), Rating{});
    EXPECT_EQ(Rating::fromRawValue(5)->rawValue(), 5);
    EXPECT_FALSE(Rating::fromRawValue(6));
    EXPECT_FALSE(Rating::fromRawValue(-1));
    EXPECT_LT(*Rating::fromRawValue(2), *Rating::fromRawValue(3));
}

TEST(PhotoItemTest, isEqualOnlyInAllThreeFields) {
    const PhotoItem item{FileURL{"/a.jpg"}, 10, FileTime{std::chrono::seconds{5}}};
    auto other = item;
    EXPECT_EQ(item, other);
    EXPECT_EQ(std::hash<PhotoItem>{}(item), std::hash<PhotoItem>{}(other));
    other.creationDate.reset();
    EXPECT_NE(item, other);
    other = item;
    other.fileSize = 11;
    EXPECT_NE(item, other);
}

} // namespace
} // namespace kelvara
