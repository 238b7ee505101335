#include "services/XMPService.h"
#include "services/XMPTestDocuments.h"
#include "support/FakeFileSystem.h"

#include <gtest/gtest.h>
#include <thread>

namespace kelvara {
namespace {

using namespace xmptest;

const FileURL sidecar{"/card/DSC_0001.xmp"};
const std::string now = "2024-05-01T09:30:12Z";
const Rating five = *Rating::fromRawValue(5);

std::chrono::system_clock::time_point fixedClock() {
    using namespace std::chrono;
    return sys_days{2024y / May / 1} + 9h + 30min + 12s + 700ms;
}

/// The sidecar after a write of five stars; the error's sentence where it failed.
std::string written(FakeFileSystem& files) {
    XMPService service{files, fixedClock};
    const auto result = service.setRating(five, sidecar);
    return result ? files.bytes(sidecar.path()).value_or("no file") : message(result.error());
}

/// A document with the marks [R] and [D] where the edit happens, and what stands there before and after.
struct Edit {
    const char* title;
    std::string document;
    std::string ratingBefore, dateBefore;
    std::string ratingAfter = "5", dateAfter = now;

    [[nodiscard]] std::string before() const { return filled(ratingBefore, dateBefore); }
    [[nodiscard]] std::string after() const { return filled(ratingAfter, dateAfter); }
    [[nodiscard]] std::string filled(const std::string& rating, const std::string& date) const {
        return replacing(replacing(document, "[R]", rating), "[D]", date);
    }
};

class XMPEditTest : public testing::TestWithParam<Edit> {};
class XMPDeclaredEncodingTest : public testing::TestWithParam<Edit> {};

void expectEdit(const std::string& before, const std::string& after) {
    FakeFileSystem files;
    files.addFile(sidecar.path(), before);
    EXPECT_EQ(written(files), after);
}

TEST_P(XMPEditTest, changesNothingElse) { expectEdit(GetParam().before(), GetParam().after()); }

TEST_P(XMPEditTest, staysInItsUTF16) {
    for (const bool isBigEndian : {false, true}) {
        expectEdit(utf16(GetParam().before(), isBigEndian), utf16(GetParam().after(), isBigEndian));
    }
}

TEST_P(XMPDeclaredEncodingTest, changesNothingElse) { expectEdit(GetParam().before(), GetParam().after()); }

const auto titleOf = [](const auto& row) { return std::string{row.param.title}; };

const std::string newRating = "xmp:Rating=\"5\"";
const std::string newDate = "xmp:MetadataDate=\"" + now + "\"";

INSTANTIATE_TEST_SUITE_P(
    Attributes, XMPEditTest,
    testing::Values(
        Edit{"doubleQuotes", description("xmp:Rating=\"[R]\" xmp:MetadataDate=\"[D]\""), "3", "2020"},
        Edit{"singleQuotesAndOddSpaces",
             description("a='>' xmp:Rating \n=\t'[R]'\r\n\txmp:MetadataDate= '[D]' "), "\"", "&lt;&#10;"},
        Edit{"namesAndValuesThatLookAlike",
             description("a='xmp:Rating=\"1\"' xmp:RatingOld='2' b=\" xmp:Rating='4'\" xmp:Rating='[R]' "
                         "Rating='3' xmp:MetadataDate='[D]' c='/>'"),
             "0", ""},
        Edit{"otherPrefix",
             description("xap:MetadataDate='[D]' xap:Rating='[R]' xmlns:xap='" + std::string{xmpURI} + "'"),
             "1", "x"},
        Edit{"inAnEmptyTag", packet("<rdf:Description xmp:Rating='[R]' xmp:MetadataDate='[D]'/>"), "1", "x"},
        Edit{"inTheSecondDescription",
             packet("<rdf:Description a='1'/><rdf:Description xmp:MetadataDate='[D]' xmp:Rating='[R]' />"),
             "1", "x"}),
    titleOf);

INSTANTIATE_TEST_SUITE_P(
    Elements, XMPEditTest,
    testing::Values(
        Edit{"text",
             description("", "\n <xmp:Rating>[R]</xmp:Rating>\n <xmp:MetadataDate >[D]</xmp:MetadataDate\n>"),
             " 4 ", "2020"},
        Edit{"cdataAndReferences",
             description("", "<xmp:Rating>[R]</xmp:Rating><xmp:MetadataDate>[D]</xmp:MetadataDate>"),
             "<![CDATA[</xmp:Rating>]]>", "&#50;&amp;"},
        Edit{"nestedMarkup",
             description("", "<xmp:Rating>[R]</xmp:Rating><xmp:MetadataDate>[D]</xmp:MetadataDate>"),
             "<b c='>'>4</b>", "<!-- c --><?p i?>"},
        Edit{"typedText",
             description("", "<xmp:Rating rdf:datatype='urn:integer'>[R]</xmp:Rating>"
                             "<xmp:MetadataDate xml:lang='en'>[D]</xmp:MetadataDate>"),
             "1", "x"},
        Edit{"emptyPair",
             description("", "<xmp:Rating>[R]</xmp:Rating><xmp:MetadataDate>[D]</xmp:MetadataDate>"), "", ""},
        Edit{"emptyTags", description("", "<xmp:Rating[R]<xmp:MetadataDate a='/>' [D]"), "/>", "/>",
             ">5</xmp:Rating>", ">" + now + "</xmp:MetadataDate>"},
        Edit{"defaultNamespace",
             description("", "<Rating xmlns='" + std::string{xmpURI} +
                                 "'[R]<xmp:MetadataDate>[D]</xmp:MetadataDate>"),
             "/>", "", ">5</Rating>"},
        // The date's place lies in what the rating replaces, so that the date has to go elsewhere.
        Edit{"datePlaceInsideTheRating", description("a='1'[D]", "<xmp:Rating>[R]</xmp:Rating>"),
             "<a><rdf:Description xmp:MetadataDate=''/></a>", "", "5", " " + newDate}),
    titleOf);

INSTANTIATE_TEST_SUITE_P(
    Additions, XMPEditTest,
    testing::Values(
        Edit{"toTheFirstDescription", packet("<rdf:Description rdf:about=''[R][D]/><rdf:Description/>"), "",
             "", " " + newRating, " " + newDate},
        Edit{"withoutAttributes", packet("<rdf:Description[R][D]></rdf:Description>"), "", "",
             " " + newRating, " " + newDate},
        Edit{"onLinesOfTheirOwn", description("a='1'\r\n\t b='2'[R][D]\r\n"), "", "", "\r\n\t " + newRating,
             "\r\n\t " + newDate},
        Edit{"besideTheOtherProperty", description("xmp:Rating='[R]'[D]"), "1", "", "5", " " + newDate},
        Edit{"withThePrefixBoundThere",
             "<!-- xmp: -->" + replacing(description("a='1'[R][D]"), "xmlns:xmp=", "xmlns:xap="), "", "",
             " xap:Rating=\"5\"", " xap:MetadataDate=\"" + now + "\""},
        Edit{"withAPrefixDeclaredWhereNoneIs",
             "<r:Description xmlns:r='" + std::string{rdfURI} + "' xmlns='" + std::string{xmpURI} +
                 "'[R][D]/>",
             "", "", " xmlns:xmp=\"" + std::string{xmpURI} + "\" " + newRating, " " + newDate},
        Edit{"withAPrefixBeyondASCII",
             "<r:Description xmlns:r='" + std::string{rdfURI} + "' xmlns:ü='" + std::string{xmpURI} +
                 "'[R][D]/>",
             "", "", " ü:Rating=\"5\"", " ü:MetadataDate=\"" + now + "\""},
        Edit{"withAFreePrefixWhereXmpIsTaken",
             packet("<rdf:Description xmlns:xmp='http://example.com/' xmlns:xmp1='http://example.org/' "
                    "xmp:Rating='3'[R][D]><xmp:a/></rdf:Description>"),
             "", "", " xmlns:xmp2=\"" + std::string{xmpURI} + "\" xmp2:Rating=\"5\"",
             " xmp2:MetadataDate=\"" + now + "\""}),
    titleOf);

const std::string anywhere = description("xmp:Rating='[R]' xmp:MetadataDate='[D]'");

INSTANTIATE_TEST_SUITE_P(
    Surroundings, XMPEditTest,
    testing::Values(
        Edit{"packetWrapper",
             "<?xpacket begin='\xEF\xBB\xBF' id='W5M0MpCehiHzreSzNTczkc9d'?>\n" + anywhere +
                 "\n        \n        \n<?xpacket end=\"w\"?>",
             "1", "x"},
        Edit{"doctypeAndInstructions",
             "<!DOCTYPE x:xmpmeta SYSTEM 'http://localhost/x.dtd' [<!-- [ ]> --><!ELEMENT a (b|c)*>]><?a "
             "b>c?>" +
                 anywhere,
             "1", "x"},
        Edit{"skippedEntity",
             "<!DOCTYPE a SYSTEM 'file:///etc/hostname'>" +
                 description("xmp:Rating='[R]' xmp:MetadataDate='[D]'", "&undeclared;"),
             "1", "x"},
        Edit{"develop",
             description(
                 "xmlns:crs='http://ns.adobe.com/camera-raw-settings/1.0/' crs:Tint=\"+7\" xmp:Rating='[R]'",
                 "<crs:ToneCurve>\n<rdf:Seq><rdf:li>0, 0</rdf:li></rdf:Seq></crs:ToneCurve>&#xD;&quot;"
                 "<xmp:MetadataDate>[D]</xmp:MetadataDate>"),
             "1", "x"},
        Edit{"charactersBeyondASCII",
             packet("<é xmlns:ü='\xF0\x9F\x93\xB7'/><rdf:Description ü='ß' xmp:Rating='[R]' é='>' "
                    "xmp:MetadataDate='[D]'"
                    "></rdf:Description>"),
             "", ""}),
    titleOf);

INSTANTIATE_TEST_SUITE_P(
    Documents, XMPDeclaredEncodingTest,
    testing::Values(
        Edit{"byteOrderMarkAndDeclaration",
             "\xEF\xBB\xBF<?xml version=\"1.0\" encoding='utf-8' standalone='yes'?>\r\n<!--\r-->\r\n" +
                 anywhere + "\r\n<!-- Rating='9' -->\n\n",
             "1", "x"},
        Edit{"latin1PrefixAdded",
             "<?xml version='1.0' encoding='ISO-8859-1'?><r:Description xmlns:r='" + std::string{rdfURI} +
                 "' xmlns:\xFC='" + std::string{xmpURI} + "'[R][D]/>",
             "", "", " \xFC:Rating=\"5\"", " \xFC:MetadataDate=\"" + now + "\""},
        Edit{"latin1",
             "<?xml version='1.0' encoding='ISO-8859-1'?>" +
                 description("\xE9='\xDF' xmlns:\xFC='" + std::string{xmpURI} +
                             "' \xFC:Rating='[R]' a='\xFF' xmp:MetadataDate='[D]'"),
             "1", "x"}),
    titleOf);

TEST(XMPWriteTest, createsAMissingSidecar) {
    FakeFileSystem files;
    files.addFolder("/card");
    EXPECT_EQ(written(files), "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\" x:xmptk=\"Kelvara\">\n"
                              " <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
                              "  <rdf:Description rdf:about=\"\" xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\" "
                              "xmp:Rating=\"5\" xmp:MetadataDate=\"2024-05-01T09:30:12Z\"/>\n"
                              " </rdf:RDF>\n"
                              "</x:xmpmeta>\n");
}

struct Refused {
    const char* title;
    std::string bytes;
};

class XMPRefusalTest : public testing::TestWithParam<Refused> {};

TEST_P(XMPRefusalTest, leavesTheFileUntouched) {
    FakeFileSystem files;
    files.addFile(sidecar.path(), GetParam().bytes);
    XMPService service{files, fixedClock};
    const auto result = service.setRating(five, sidecar);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error(), XMPError{UnreadableSidecar{sidecar}});
    EXPECT_EQ(message(result.error()), "DSC_0001.xmp exists but isn't valid XMP, so it was left untouched.");
    EXPECT_EQ(files.count(FakeFileSystem::Operation::write), 0);
}

const std::string rated = description("xmp:Rating='1'");

INSTANTIATE_TEST_SUITE_P(
    Documents, XMPRefusalTest,
    testing::Values(
        Refused{"empty", ""}, Refused{"text", "This is a shopping list."},
        Refused{"halfWritten", rated.substr(0, 90)}, Refused{"zeros", std::string(4096, '\0')},
        Refused{"noDescription", packet("<a/>")},
        Refused{"descriptionOfAnotherNamespace", "<Description xmlns='http://example.com/'/>"},
        Refused{"unknownEncoding", "<?xml version='1.0' encoding='Shift_JIS'?>" + rated},
        Refused{"larger", rated + std::string(8 * 1024 * 1024, ' ')},
        Refused{"resource", description("", "<xmp:Rating rdf:parseType='Resource'><rdf:value>1</rdf:value>"
                                            "</xmp:Rating>")},
        Refused{"ratingUnderTwoPrefixes",
                description("xmp:Rating='1' q:Rating='1' xmlns:q='" + std::string{xmpURI} + "'")},
        Refused{"entity", "<!DOCTYPE a [<!ENTITY e '1'>]>" + description("xmp:Rating='&e;'")},
        Refused{"externalEntity", "<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/hostname'>]>" +
                                      description("", "<xmp:Rating>&e;</xmp:Rating>")},
        Refused{"parameterEntity", "<!DOCTYPE a [<!ENTITY % e SYSTEM 'file:///etc/hostname'> %e;]>" + rated},
        Refused{"defaultAttribute", "<!DOCTYPE a [<!ATTLIST a b CDATA '1'>]>" + rated}),
    [](const auto& row) { return std::string{row.param.title}; });

TEST(XMPWriteTest, anUnreadableFileIsNotReplaced) {
    for (const auto code : {std::errc::permission_denied, std::errc::io_error, std::errc::not_a_directory}) {
        FakeFileSystem files;
        files.addFile(sidecar.path(), rated);
        files.refuse(FakeFileSystem::Operation::read, sidecar.path(), code);
        XMPService service{files, fixedClock};
        const auto result = service.setRating(five, sidecar);
        ASSERT_FALSE(result);
        const FileError expected{sidecar, std::make_error_code(code)};
        EXPECT_EQ(result.error(), XMPError{expected});
        EXPECT_EQ(message(result.error()), message(expected));
        EXPECT_EQ(files.count(FakeFileSystem::Operation::write), 0);
    }
}

TEST(XMPWriteTest, aFolderInThePlaceOfTheSidecarIsAnError) {
    FakeFileSystem files;
    files.addFolder(sidecar.path());
    XMPService service{files, fixedClock};
    const auto result = service.setRating(five, sidecar);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error(), XMPError(FileError{sidecar, std::make_error_code(std::errc::is_a_directory)}));
}

TEST(XMPWriteTest, aFailedWriteIsReportedAndLeavesTheOldFile) {
    FakeFileSystem files;
    files.addFile(sidecar.path(), rated);
    files.failChange(1, std::errc::read_only_file_system);
    XMPService service{files, fixedClock};
    const auto result = service.setRating(five, sidecar);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error(),
              XMPError(FileError{sidecar, std::make_error_code(std::errc::read_only_file_system)}));
    EXPECT_EQ(files.bytes(sidecar.path()), rated);
}

TEST(XMPWriteTest, simultaneousCallsTakeTurns) {
    FakeFileSystem files;
    files.addFile(sidecar.path(), rated);
    XMPService service{files, fixedClock};
    const auto writeOften = [&](int stars) {
        for (int i = 0; i < 100; ++i) EXPECT_TRUE(service.setRating(*Rating::fromRawValue(stars), sidecar));
    };
    {
        const std::jthread first{writeOften, 2};
        const std::jthread second{writeOften, 3};
        for (int i = 0; i < 100; ++i) EXPECT_EQ(service.readRatings(std::span{&sidecar, 1}).size(), 1u);
    }
    const auto last = service.readRatings(std::span{&sidecar, 1}).at(sidecar).rawValue();
    EXPECT_EQ(files.bytes(sidecar.path()),
              description("xmp:Rating='" + std::to_string(last) + "' xmp:MetadataDate=\"" + now + "\""));
}

} // namespace
} // namespace kelvara
