#include "model/FileURL.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

struct NameParts {
    const char* title;
    const char* path;
    const char* name;
    const char* stem;
    const char* extension;
    const char* stemKey;
};

class FileURLNameTest : public testing::TestWithParam<NameParts> {};

TEST_P(FileURLNameTest, splitsTheNameAtItsLastDot) {
    const auto& expected = GetParam();
    const FileURL url{expected.path};
    EXPECT_EQ(url.name(), expected.name);
    EXPECT_EQ(url.stem(), expected.stem);
    EXPECT_EQ(url.extension(), expected.extension);
    EXPECT_EQ(url.stemKey().path(), expected.stemKey);
}

INSTANTIATE_TEST_SUITE_P(
    Names, FileURLNameTest,
    testing::Values(NameParts{"raw", "/Card/DCIM/100CAM/DSC_0042.NEF", "DSC_0042.NEF", "DSC_0042", "NEF",
                              "/Card/DCIM/100CAM/DSC_0042.xmp"},
                    NameParts{"severalDots", "/a/b.c.jpg", "b.c.jpg", "b.c", "jpg", "/a/b.c.xmp"},
                    NameParts{"noExtension", "/a.b/README", "README", "README", "", "/a.b/README.xmp"},
                    NameParts{"hidden", "/a/.jpg", ".jpg", ".jpg", "", "/a/.jpg.xmp"},
                    NameParts{"dotAtTheEnd", "/a/name.", "name.", "name.", "", "/a/name..xmp"},
                    NameParts{"notUTF8", "/a/\xff\xfe.NEF", "\xff\xfe.NEF", "\xff\xfe", "NEF",
                              "/a/\xff\xfe.xmp"},
                    NameParts{"root", "/", "/", "/", "", "/.xmp"}),
    [](const auto& row) { return row.param.title; });

TEST(FileURLTest, keysTellCaseAndNormalFormApart) {
    EXPECT_NE(FileURL{"/c/a.jpg"}.stemKey(), FileURL{"/c/A.JPG"}.stemKey());
    EXPECT_NE(FileURL{"/c/\u00e9.jpg"}, FileURL{"/c/e\u0301.jpg"});
    EXPECT_EQ(FileURL{"/c/IMG_1.CR3"}.stemKey(), FileURL{"/c/IMG_1.JPG"}.stemKey());
    EXPECT_NE(FileURL{"/c/A/IMG_1.CR3"}.stemKey(), FileURL{"/c/B/IMG_1.JPG"}.stemKey());
}

TEST(FileURLTest, urisAreExact) {
    const FileURL odd{"/c/caf\xe9 100%\n\x01?#.jpg"};
    EXPECT_EQ(odd.uri(), "file:///c/caf%E9%20100%25%0A%01%3F%23.jpg");
    EXPECT_EQ(FileURL::fromURI(odd.uri()), odd);
    EXPECT_EQ(FileURL::fromURI("file:///a b%2fc"), FileURL{"/a b/c"});
    for (const auto* text :
         {"", "/a", "file://host/a", "file:///a%", "file:///a%4", "file:///%4x", "file:///%00"}) {
        EXPECT_FALSE(FileURL::fromURI(text)) << text;
    }
}

TEST(FileURLTest, standardizesByTextAlone) {
    EXPECT_EQ(FileURL::standardized("/a//b/./c/../d/").path(), "/a/b/d");
    EXPECT_EQ(FileURL::standardized("photos", "/home/me").path(), "/home/me/photos");
    EXPECT_EQ(FileURL::standardized("../../..", "/home/me").path(), "/");
}

TEST(FileURLTest, containmentGoesByWholeComponents) {
    const FileURL card{"/media/card"};
    EXPECT_TRUE(FileURL{"/media/card"}.isContained(card));
    EXPECT_TRUE(FileURL{"/media/card/DCIM/../x"}.isContained(card));
    EXPECT_FALSE(FileURL{"/media/card2/DCIM"}.isContained(card));
    EXPECT_FALSE(FileURL{"/media"}.isContained(card));
    EXPECT_FALSE(FileURL{"/media/CARD/DCIM"}.isContained(card));
    EXPECT_TRUE(FileURL{"/media"}.isContained(FileURL{"/"}));
}

TEST(FileURLTest, parentsAndChildrenMeet) {
    EXPECT_EQ(FileURL{"/a/b.jpg"}.parent().path(), "/a");
    EXPECT_EQ(FileURL{"/a"}.parent().path(), "/");
    EXPECT_EQ(FileURL{"/"}.parent().path(), "/");
    EXPECT_EQ(FileURL{"/"}.child("a").path(), "/a");
    EXPECT_EQ(FileURL{"/a/b.CR3"}.appendingExtension("partial").path(), "/a/b.CR3.partial");
}

} // namespace
} // namespace kelvara
