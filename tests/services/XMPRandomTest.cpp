#include "services/XMPService.h"
#include "services/XMPTestDocuments.h"
#include "support/FakeFileSystem.h"

#include <array>
#include <gtest/gtest.h>
#include <random>

namespace kelvara {
namespace {

using namespace xmptest;

/// Makes valid sidecars in every style that XML allows. Where the two properties stand, their values lie
/// between control characters that are taken out again, so that a test knows which bytes may change.
class SidecarGenerator {
public:
    static constexpr char markStart = '\x01';
    static constexpr char markEnd = '\x02';

    explicit SidecarGenerator(unsigned seed) : m_random{seed} {}

    std::string document() {
        m_prefix = pick({"xmp", "xap", "X-1", "\u00e9"});
        m_children.clear();
        std::string attributes;
        for (const std::string name : {"Rating", "MetadataDate"}) {
            const auto style = number(2);
            auto& place = style == 0 ? attributes : m_children;
            place += style == 0 ? attribute(m_prefix + ":" + name, marked()) : element(name);
            place += style == 0 ? attribute("a:" + name, "7") : "<a:" + name + ">7</a:" + name + ">";
        }
        const std::string names = attribute("xmlns:" + m_prefix, xmpURI) + attribute("xmlns:a", "urn:a");
        // Declarations may follow the names that need them.
        const auto start = number(2) == 0 ? attributes + names : names + attributes;
        return prologue() + "<rdf:RDF" + attribute("xmlns:rdf", rdfURI) + ">" + filler() +
               "<rdf:Description" + start + space("") + ">" + filler() + m_children + filler() +
               "</rdf:Description>" + filler() + "</rdf:RDF" + space("") + ">" +
               pick({"", "\r\n", "<!-- end -->", "\n   \n<?xpacket end='w'?>"});
    }

private:
    std::size_t number(std::size_t bound) {
        return std::uniform_int_distribution<std::size_t>{0, bound - 1}(m_random);
    }
    std::string pick(std::vector<std::string> choices) { return choices[number(choices.size())]; }

    std::string space(const std::string& least) { return least + pick({"", "", " ", "\n", "\r\n\t"}); }
    std::string marked() {
        return markStart + pick({"", "3", " 4\t", "-1", "&#51;", "&quot;&lt;", "word", "/>"}) + markEnd;
    }
    std::string attribute(const std::string& name, std::string_view value) {
        const auto quote = pick({"'", "\""});
        return space(" ") + name + space("") + "=" + space("") + quote + std::string{value} + quote;
    }
    std::string element(const std::string& name) {
        const auto content =
            pick({"", "3", " 4 ", "<![CDATA[>]]>", "&amp;", "<b c='/>'>1</b>", "<!-- 2 -->"});
        return "<" + m_prefix + ":" + name + attribute("c", ">") + space("") + ">" + markStart + content +
               markEnd + "</" + m_prefix + ":" + name + space("") + ">";
    }
    std::string filler() {
        return pick({"", "\n ", "\r\n", "<!-- <xmp:Rating>1</xmp:Rating> -->", "<?p xmp:Rating='1'?>",
                     "<a xmlns='urn:b'><b/>&gt;</a>", "\u00fc\U0001F4F7", "<![CDATA[<rdf:Description>]]>"});
    }
    std::string prologue() {
        return pick({"", "\xEF\xBB\xBF"}) + pick({"", "<?xml version=\"1.0\"?>\r\n"}) +
               pick({"", "<!DOCTYPE x>", "<?xpacket begin='' id='1'?>\n"});
    }

    std::mt19937 m_random;
    std::string m_prefix;
    std::string m_children;
};

struct MarkedDocument {
    std::string bytes;
    std::vector<std::string> kept; // what stands before, between and after the two values
};

MarkedDocument withoutMarks(const std::string& marked) {
    MarkedDocument result{{}, {""}};
    bool isInValue = false;
    for (const char character : marked) {
        if (character == SidecarGenerator::markStart) {
            isInValue = true;
        } else if (character == SidecarGenerator::markEnd) {
            isInValue = false;
            result.kept.emplace_back();
        } else {
            result.bytes += character;
            if (!isInValue) result.kept.back() += character;
        }
    }
    return result;
}

TEST(XMPRandomTest, aWriteKeepsAllOtherBytesAndReadsBack) {
    const std::string date = "2001-09-09T01:46:40Z";
    for (unsigned seed = 0; seed < 3000; ++seed) {
        const auto document = withoutMarks(SidecarGenerator{seed}.document());
        ASSERT_EQ(document.kept.size(), 3u);
        const auto stars = static_cast<int>(seed % 6);
        FakeFileSystem files;
        files.addFile("/a.xmp", document.bytes);
        XMPService service{files, [] { return std::chrono::system_clock::from_time_t(1'000'000'000); }};
        ASSERT_TRUE(service.setRating(*Rating::fromRawValue(stars), FileURL{"/a.xmp"})) << document.bytes;

        const auto after = files.bytes("/a.xmp").value();
        const auto value = std::to_string(stars);
        const auto with = [&](const std::string& first, const std::string& second) {
            return document.kept[0] + first + document.kept[1] + second + document.kept[2];
        };
        ASSERT_TRUE(after == with(value, date) || after == with(date, value)) << document.bytes << "\n"
                                                                              << after;
        ASSERT_EQ(XMPService::rating(after), Rating::fromRawValue(stars)) << after;

        ASSERT_TRUE(service.setRating(*Rating::fromRawValue(stars), FileURL{"/a.xmp"}));
        ASSERT_EQ(files.bytes("/a.xmp"), after) << "a second write of the same changes nothing";
    }
}

TEST(XMPRandomTest, damagedSidecarsNeverBecomeOthers) {
    std::mt19937 random{1};
    const auto number = [&](std::size_t bound) {
        return std::uniform_int_distribution<std::size_t>{0, bound - 1}(random);
    };
    for (unsigned seed = 0; seed < 3000; ++seed) {
        auto bytes = withoutMarks(SidecarGenerator{seed}.document()).bytes;
        for (auto damages = 1 + number(3); damages > 0; --damages) {
            bytes[number(bytes.size())] = "<>\"'&/= \0:;x"[number(12)];
        }
        FakeFileSystem files;
        files.addFile("/a.xmp", bytes);
        XMPService service{files};
        const auto result = service.setRating(*Rating::fromRawValue(4), FileURL{"/a.xmp"});
        const auto after = files.bytes("/a.xmp").value();
        // Either it was still a sidecar and is one now, or nobody touched it.
        if (result) {
            ASSERT_EQ(XMPService::rating(after), Rating::fromRawValue(4)) << bytes;
        } else {
            ASSERT_EQ(after, bytes);
        }
    }
}

} // namespace
} // namespace kelvara
