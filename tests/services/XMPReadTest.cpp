#include "services/XMPService.h"
#include "services/XMPTestDocuments.h"
#include "support/FakeFileSystem.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

using namespace xmptest;

constexpr int none = -1;

struct Reading {
    const char* title;
    std::string bytes;
    int stars; // or none
};

class XMPReadTest : public testing::TestWithParam<Reading> {};

TEST_P(XMPReadTest, givesTheRating) {
    const auto rating = XMPService::rating(GetParam().bytes);
    EXPECT_EQ(rating ? rating->rawValue() : none, GetParam().stars);
}

const auto titleOf = [](const auto& row) { return std::string{row.param.title}; };

std::string attribute(const std::string& value) { return description("xmp:Rating=\"" + value + "\""); }
std::string element(const std::string& content) {
    return description("", "<xmp:Rating>" + content + "</xmp:Rating>");
}

INSTANTIATE_TEST_SUITE_P(
    Values, XMPReadTest,
    testing::Values(Reading{"zero", attribute("0"), 0}, Reading{"five", attribute("5"), 5},
                    Reading{"spacesAndTabs", attribute(" \t3 "), 3}, Reading{"plus", attribute("+4"), 4},
                    Reading{"minusZero", attribute("-0"), 0}, Reading{"leadingZeros", attribute("0003"), 3},
                    Reading{"rejected", attribute("-1"), none}, Reading{"six", attribute("6"), none},
                    Reading{"empty", attribute(""), none}, Reading{"onlySpaces", attribute("  "), none},
                    Reading{"fraction", attribute("3.0"), none}, Reading{"word", attribute("three"), none},
                    Reading{"signOnly", attribute("+"), none}, Reading{"twoSigns", attribute("+-3"), none},
                    Reading{"digitsThenText", attribute("3 stars"), none},
                    Reading{"moreDigitsThanAnyInteger", attribute("18446744073709551619"), none},
                    Reading{"characterReference", attribute("&#x33;"), 3}),
    titleOf);

INSTANTIATE_TEST_SUITE_P(
    Elements, XMPReadTest,
    testing::Values(
        Reading{"spaces", element(" 4 "), 4}, Reading{"cdata", element("<![CDATA[4]]>"), 4},
        Reading{"reference", element("&#52;"), 4}, Reading{"commentInside", element("<!-- 2 -->4<?n 3?>"), 4},
        Reading{"nestedMarkup", element("<b>4</b>"), 4}, Reading{"emptyElement", element(""), none},
        Reading{"emptyTag", description("", "<xmp:Rating/>"), none},
        Reading{"firstOfTwo", description("", "<xmp:Rating>1</xmp:Rating><xmp:Rating>2</xmp:Rating>"), 1},
        Reading{"firstHasNoValue", description("", "<xmp:Rating/><xmp:Rating>2</xmp:Rating>"), none},
        Reading{"grandchild", description("", "<a><xmp:Rating>2</xmp:Rating></a>"), none},
        Reading{"attributeBeforeElement", description("xmp:Rating='3'", "<xmp:Rating>2</xmp:Rating>"), 3}),
    titleOf);

const std::string xapNames = " xmlns:xap='" + std::string{xmpURI} + "'";

INSTANTIATE_TEST_SUITE_P(
    Descriptions, XMPReadTest,
    testing::Values(
        Reading{"secondDescription", packet("<rdf:Description/><rdf:Description xmp:Rating='2'/>"), 2},
        Reading{"elementOfTheFirstBeforeAttributeOfTheSecond",
                packet("<rdf:Description><xmp:Rating>1</xmp:Rating></rdf:Description>"
                       "<rdf:Description xmp:Rating='2'/>"),
                1},
        Reading{"nestedDescription", description("", "<a><rdf:Description xmp:Rating='2'/></a>"), 2},
        Reading{"outerElementAfterNestedDescription",
                description("", "<a><rdf:Description xmp:Rating='2'/></a><xmp:Rating>1</xmp:Rating>"), 1},
        Reading{"outerElementAfterNestedElement",
                description("", "<a><rdf:Description><xmp:Rating>2</xmp:Rating></rdf:Description></a>"
                                "<xmp:Rating>1</xmp:Rating>"),
                1},
        Reading{"descriptionInsideTheProperty",
                element("4<rdf:Description xmp:Rating='2'><xmp:Rating/></rdf:Description>"), 4},
        Reading{"noDescription", packet("<a xmp:Rating='2'/>"), none}),
    titleOf);

INSTANTIATE_TEST_SUITE_P(
    Namespaces, XMPReadTest,
    testing::Values(Reading{"otherPrefix", description("xap:Rating='2'" + xapNames), 2},
                    Reading{"defaultNamespaceForElements",
                            description("", "<Rating xmlns='" + std::string{xmpURI} + "'>2</Rating>"), 2},
                    Reading{"noDefaultNamespaceForAttributes",
                            description("Rating='2' xmlns='" + std::string{xmpURI} + "'"), none},
                    Reading{"xmpBoundToSomethingElse",
                            description("xmlns:xmp='http://example.com/' xmp:Rating='2'"), none},
                    Reading{"prefixReboundInside",
                            description("xmlns:xmp='http://example.com/'",
                                        "<a" + xapNames + "/><xmp:Rating>1</xmp:Rating>"),
                            none},
                    Reading{"bindingEndsWithItsElement",
                            packet("<rdf:Description xmlns:xmp='http://example.com/' xmp:Rating='1'/>"
                                   "<rdf:Description xmp:Rating='2'/>"),
                            2},
                    Reading{"rdfUnderAnotherPrefix",
                            "<r:RDF xmlns:r='" + std::string{rdfURI} + "' xmlns:q='" + std::string{xmpURI} +
                                "'><r:Description q:Rating='2'/></r:RDF>",
                            2},
                    Reading{"referenceInTheNamespace",
                            description("q:Rating='2' xmlns:q='http&#58;//ns.adobe.com/xap/1.0/'"), 2},
                    Reading{"unboundPrefix", description("xmp:Rating='2' nobody:Knows='1'"), none},
                    Reading{"sameAttributeUnderTwoPrefixes",
                            description("xmp:Rating='2' xap:Rating='3'" + xapNames), none}),
    titleOf);

const std::string three = description("xmp:Rating='3'");

INSTANTIATE_TEST_SUITE_P(
    Encodings, XMPReadTest,
    testing::Values(
        Reading{"utf8Mark", "\xEF\xBB\xBF" + three, 3}, Reading{"utf16LittleEndian", utf16(three, false), 3},
        Reading{"utf16BigEndian", utf16(three, true), 3},
        Reading{"utf16Declared", utf16("<?xml version='1.0' encoding='UTF-16'?>" + three, true), 3},
        Reading{"utf16WithoutMark", utf16(three, false, false), 3},
        Reading{"latin1",
                "<?xml version='1.0' encoding='iso-8859-1'?>" + description("a='\xE9' xmp:Rating='3'"), 3},
        Reading{"latin1Undeclared", description("a='\xE9' xmp:Rating='3'"), none},
        Reading{"unknownEncoding", "<?xml version='1.0' encoding='EBCDIC-CP-FR'?>" + three, none},
        Reading{"declarationContradictsTheBytes", "<?xml version='1.0' encoding='UTF-16'?>" + three, none},
        Reading{"halfACharacterAtTheEnd", utf16(three, false) + "\n", none}),
    titleOf);

INSTANTIATE_TEST_SUITE_P(
    Broken, XMPReadTest,
    testing::Values(Reading{"empty", "", none}, Reading{"text", "Rating 3", none},
                    Reading{"truncated", three.substr(0, three.size() - 5), none},
                    Reading{"secondRoot", three + three, none}, Reading{"nulInside", three + '\0', none},
                    Reading{"unquoted", description("xmp:Rating=3"), none},
                    Reading{"undefinedEntity", description("xmp:Rating='3'", "&nothing;"), none},
                    Reading{"attributeTwice", description("xmp:Rating='3' xmp:Rating='3'"), none}),
    titleOf);

TEST(XMPReadRatingsTest, holdsOnlyTheSidecarsThatHaveARating) {
    FakeFileSystem files;
    files.addFile("/card/a.xmp", attribute("3"));
    files.addFile("/card/b.xmp", attribute("-1"));
    files.addFile("/card/c.xmp", "not XML");
    files.addFile("/card/d.xmp", attribute("5"));
    files.addFile("/card/e.xmp", attribute("0"));
    files.addFolder("/card/f.xmp");
    files.refuse(FakeFileSystem::Operation::read, "/card/d.xmp");
    std::vector<FileURL> sidecars;
    for (const char* name : {"a", "b", "c", "d", "e", "f", "missing"}) {
        sidecars.push_back(FileURL{"/card"}.child(name).withExtension("xmp"));
    }
    const std::unordered_map<FileURL, Rating> expected{{sidecars[0], *Rating::fromRawValue(3)},
                                                       {sidecars[4], *Rating::fromRawValue(0)}};
    EXPECT_EQ(XMPService{files}.readRatings(sidecars), expected);
}

TEST(XMPReadRatingsTest, readsManySidecarsEachOnce) {
    FakeFileSystem files;
    std::vector<FileURL> sidecars;
    std::unordered_map<FileURL, Rating> expected;
    for (int i = 0; i < 1000; ++i) {
        sidecars.emplace_back("/card/" + std::to_string(i) + ".xmp");
        const auto rating = Rating::fromRawValue(i % 8);
        files.addFile(sidecars.back().path(), attribute(std::to_string(i % 8)));
        if (rating) expected.emplace(sidecars.back(), *rating);
    }
    EXPECT_EQ(XMPService{files}.readRatings(sidecars), expected);
    EXPECT_EQ(files.count(FakeFileSystem::Operation::read), 1000);
}

TEST(XMPReadRatingsTest, stopsWithWhatItHasRead) {
    FakeFileSystem files;
    std::vector<FileURL> sidecars;
    for (const char* path : {"/a.xmp", "/b.xmp", "/c.xmp"}) {
        files.addFile(path, attribute("3"));
        sidecars.emplace_back(path);
    }
    std::stop_source stop;
    files.onOperation = [&](FakeFileSystem::Operation, const FileURL& url) {
        if (url.path() == "/b.xmp") stop.request_stop();
    };
    const auto ratings = XMPService{files}.readRatings(sidecars, stop.get_token());
    EXPECT_EQ(ratings.size(), 2u);
    EXPECT_EQ(files.count(FakeFileSystem::Operation::read), 2);
}

} // namespace
} // namespace kelvara
