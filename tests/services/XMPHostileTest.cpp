#include "services/XMPService.h"
#include "services/XMPTestDocuments.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

using namespace xmptest;

std::string repeated(std::string_view text, std::size_t times) {
    std::string result;
    result.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i) result += text;
    return result;
}

/// Mentions the property, so that nothing is decided before the parser has seen the document.
const std::string rated = description("xmp:Rating='3'");

TEST(XMPHostileTest, aMillionLevelsEndEarly) {
    const auto deep = repeated("<a>", 1'000'000) + rated + repeated("</a>", 1'000'000);
    EXPECT_EQ(XMPService::rating(deep), std::nullopt);
    EXPECT_EQ(XMPService::rating(repeated("<a b='Rating'>", 1'000'000)), std::nullopt);
}

TEST(XMPHostileTest, entityBombsAreNotExpanded) {
    std::string nested = "<!DOCTYPE a [<!ENTITY e0 'lol'>";
    std::string chain = "<!DOCTYPE a [<!ENTITY e0 'lol'>";
    for (int i = 1; i < 20; ++i) {
        nested +=
            "<!ENTITY e" + std::to_string(i) + " '" + repeated("&e" + std::to_string(i - 1) + ";", 10) + "'>";
    }
    for (int i = 1; i < 100'000; ++i) {
        chain += "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i - 1) + ";'>";
    }
    EXPECT_EQ(XMPService::rating(nested + "]>" + description("xmp:Rating='3'", "&e19;")), std::nullopt);
    EXPECT_EQ(XMPService::rating(chain + "]>" + description("xmp:Rating='3'", "&e99999;")), std::nullopt);
    EXPECT_EQ(XMPService::rating("<!DOCTYPE a [<!ENTITY e '" + std::string(1'000'000, 'x') + "'>]>" +
                                 description("xmp:Rating='3'", repeated("&e;", 100'000))),
              std::nullopt);
}

TEST(XMPHostileTest, hugeFilesAreNotParsed) {
    EXPECT_EQ(XMPService::rating(rated + std::string(100'000'000, ' ')), std::nullopt);
}

TEST(XMPHostileTest, manyOfAnythingTakesNoQuadraticTime) {
    std::string attributes;
    std::string declarations;
    for (int i = 0; i < 200'000; ++i) {
        attributes += " a" + std::to_string(i) + "=''";
        declarations += " xmlns:a" + std::to_string(i) + "='u'";
    }
    EXPECT_EQ(XMPService::rating(description("xmp:Rating='3'" + attributes)), Rating::fromRawValue(3));
    EXPECT_EQ(XMPService::rating(description("xmp:Rating='3'" + declarations)), std::nullopt);
    EXPECT_EQ(XMPService::rating(packet(repeated("<rdf:Description xmp:a=''/>", 200'000) +
                                        "<rdf:Description xmp:Rating='3'/>")),
              Rating::fromRawValue(3));
    EXPECT_EQ(
        XMPService::rating(description("", "<xmp:Rating>" + repeated("&#51;", 500'000) + "</xmp:Rating>")),
        std::nullopt);
    EXPECT_EQ(XMPService::rating("<!DOCTYPE a [<!ELEMENT a " + repeated("(", 500'000)), std::nullopt);
    EXPECT_EQ(XMPService::rating(rated + repeated("<!-- Rating -->", 500'000)), Rating::fromRawValue(3));
}

} // namespace
} // namespace kelvara
