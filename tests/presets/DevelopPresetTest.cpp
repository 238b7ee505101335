#include "presets/DevelopPreset.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <sys/stat.h>

namespace kelvara {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;
using Kind = DevelopPreset::LoadError::Kind;
using List = std::vector<double>;
using Slider = LightAdjustments::Slider;

Result<DevelopPreset, DevelopPreset::LoadError> read(const std::string& name, const std::string& bytes) {
    return DevelopPreset::read(bytes, FileURL{"/presets"}.child(name));
}

/// Its title, or the kind of failure.
std::string outcome(const std::string& name, const std::string& bytes) {
    const auto preset = read(name, bytes);
    if (preset) return preset->title;
    EXPECT_EQ(preset.error().fileName, name);
    return preset.error().kind == Kind::unreadable ? "unreadable" : "no preset";
}

std::string lua(const std::string& settings, const std::string& others = "type = \"Develop\",") {
    return "s = {" + others + "value = { settings = {" + settings + "}, uuid = \"x\" }, version = 0 }";
}

std::string packet(const std::string& inner) {
    return "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
           "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#' "
           "xmlns:crs='http://ns.adobe.com/camera-raw-settings/1.0/'>" +
           inner + "</rdf:RDF></x:xmpmeta>";
}
std::string xmp(const std::string& attributes, const std::string& children = {}) {
    return packet("<rdf:Description rdf:about='' " + attributes + ">" + children + "</rdf:Description>");
}
std::string named(const std::string& items) {
    return "<crs:Name><rdf:Alt>" + items + "</rdf:Alt></crs:Name>";
}
std::string look(const std::string& inner) { return "<crs:Look>" + inner + "</crs:Look>"; }

/// ASCII as UTF-16 with a byte-order mark.
std::string utf16(const std::string& text, bool isBigEndian) {
    std::string bytes = isBigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char c : text) bytes += isBigEndian ? std::string{'\0', c} : std::string{c, '\0'};
    return bytes;
}

TEST(DevelopPresetTest, outcomesOfLuaFiles) {
    const auto good = lua("Exposure2012 = 1");
    const std::vector<std::tuple<std::string, std::string, std::string>> rows{
        {"My.Look.LRTEMPLATE", good, "My.Look"},
        {"A.lrtemplate", "\xEF\xBB\xBF-- a comment\r\n" + good, "A"},
        {"A.lrtemplate", lua(""), "A"},
        {"A.lrtemplate", lua("", "title = \"Warm\","), "Warm"},
        {"A.lrtemplate", lua("", "title = \"\","), "A"},
        {"A.lrtemplate", lua("", "title = 3,"), "A"},
        {"A.lrtemplate", lua("", "title = \"$$$/Some/Key=Foo Look = 2\","), "Foo Look = 2"},
        {"A.lrtemplate", lua("", "title = \"$$$/Some/Key\","), "$$$/Some/Key"},
        {"A.lrtemplate", lua("", "title = \"$$$/Some/Key=\","), "A"},
        {"A.lrtemplate", lua("", "title = \"$$$=Foo\","), "$$$=Foo"},
        {"A.lrtemplate", lua("", "title = ZSTR \"$$$/Some/Key=Foo\","), "unreadable"},
        {"A.lrtemplate", lua("", "type = 3,"), "A"},
        {"A.lrtemplate", lua("", ""), "A"},
        {"A.lrtemplate", lua("", "type = \"develop\","), "no preset"},
        {"A.lrtemplate", lua("", "type = \"Export\","), "no preset"},
        {"A.lrtemplate", "s = {}", "no preset"},
        {"A.lrtemplate", "s = { 1, 2 }", "no preset"},
        {"A.lrtemplate", "s = { value = 3 }", "no preset"},
        {"A.lrtemplate", "s = { value = { settings = \"x\" } }", "no preset"},
        {"A.lrtemplate", "s = { value = { { settings = {} } } }", "no preset"},
        {"A.lrtemplate", "s = \"text\"", "unreadable"},
        {"A.lrtemplate", "s = { value = { settings = { 1 2 } } }", "unreadable"},
        {"A.lrtemplate", "", "unreadable"},
        {"A.lrtemplate", lua("a = \"\xFF\""), "unreadable"},
        {"A.lrtemplate", utf16(good, false), "unreadable"},
        {"A.lrtemplate", good + std::string(DevelopPreset::maximumFileSize, ' '), "unreadable"},
        {"A.lrtemplate", xmp("crs:Exposure2012='1'"), "unreadable"},
        {"A.txt", good, "unreadable"},
        {"lrtemplate", good, "unreadable"},
        {".lrtemplate", good, "unreadable"},
    };
    for (const auto& [name, bytes, result] : rows) {
        EXPECT_EQ(outcome(name, bytes), result) << name << ' ' << bytes.substr(0, 200);
    }
}

TEST(DevelopPresetTest, settingsOfLuaFiles) {
    const auto preset =
        read("A.lrtemplate", lua("Exposure2012 = +0.35, CameraProfile = \"Embedded\","
                                 "ConvertToGrayscale = false, Other = nil, Odd = -inf,"
                                 "ToneCurvePV2012 = { 0, \"x\", 0, key = 7, 255, +nan, {}, 255 },"
                                 "Empty = {}, [1] = 2, 3, \"positional\","));
    ASSERT_TRUE(preset.hasValue());
    EXPECT_THAT(preset->settings,
                UnorderedElementsAre(Pair("Exposure2012", PresetValue{0.35}), Pair("1.0", PresetValue{2.0}),
                                     Pair("CameraProfile", PresetValue{"Embedded"}),
                                     Pair("ConvertToGrayscale", PresetValue{false}),
                                     Pair("Empty", PresetValue{List{}}),
                                     Pair("ToneCurvePV2012", PresetValue{List{0, 0, 255, 255}})));
}

TEST(DevelopPresetTest, outcomesOfXMPFiles) {
    const auto good = xmp("crs:Exposure2012='+1.00'");
    const std::vector<std::pair<std::string, std::string>> rows{
        {good, "A"},
        {"\xEF\xBB\xBF<?xpacket begin='' id='W5M0MpCehiHzreSzNTczkc9d'?>" + good +
             "\n  <?xpacket end='w'?>\n",
         "A"},
        {utf16(good, false), "A"},
        {utf16("<?xml version='1.0' encoding='UTF-16'?>" + good, true), "A"},
        {xmp("", named("<rdf:li xml:lang='x-default'>First</rdf:li><rdf:li>Second</rdf:li>")), "First"},
        {xmp("crs:Name='Attribute'", named("<rdf:li> $$$/A/B=Tom &amp; <![CDATA[<b>]]></rdf:li>")),
         "Tom & <b>"},
        {xmp("crs:Name='Attribute'", named("<rdf:li/><rdf:li>Second</rdf:li>")), "Attribute"},
        {xmp("crs:Name='1960'"), "A"}, // a number
        {xmp("", "<crs:Name>Plain</crs:Name>"), "Plain"},
        {xmp("crs:PresetType='Normal'"), "A"},
        {xmp("crs:PresetType='True'"), "A"},
        {xmp("crs:PresetType='Profile'"), "no preset"},
        {xmp("crs:PresetType='Look'", named("<rdf:li>Foo</rdf:li>")), "no preset"},
        {xmp("", "<crs:PresetType>Profile</crs:PresetType>"), "no preset"},
        {xmp("crs:Exposure2012='1'", look("<rdf:Description crs:PresetType='Profile' crs:Name='L'/>")), "A"},
        {xmp("xmlns:q='http://example.com/' q:Exposure2012='1'"), "no preset"},
        {packet("<crs:Exposure2012>1</crs:Exposure2012>"), "no preset"},
        {packet("<rdf:Description/><a><rdf:Description crs:Name='Inner'/></a>"), "Inner"},
        {xmp("", "<a><rdf:Description crs:Name='Inner'/></a>"), "no preset"},
        {"<a/>", "no preset"},
        {"", "unreadable"},
        {good.substr(0, good.size() - 1), "unreadable"},
        {good + good, "unreadable"},
        {xmp("crs:Exposure2012='1' crs:Exposure2012='1'"), "unreadable"},
        {xmp("nobody:Exposure2012='1'"), "unreadable"},
        {lua(""), "unreadable"},
        {std::string(DevelopPreset::maximumFileSize, ' ') + good, "unreadable"},
        {"<!DOCTYPE a SYSTEM 'file:///etc/passwd'>" + good, "A"},
        {"<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/passwd'>]>" + xmp("", named("<rdf:li>&e;</rdf:li>")),
         "unreadable"},
        {"<!DOCTYPE a [<!ATTLIST rdf:Description crs:Exposure2012 CDATA '1'>]>" + xmp(""), "unreadable"},
    };
    for (const auto& [bytes, result] : rows)
        EXPECT_EQ(outcome("A.XMP", bytes), result) << bytes.substr(0, 400);
}

TEST(DevelopPresetTest, hostileXMPEndsSoon) {
    std::string laughs = "<!DOCTYPE a [<!ENTITY e0 'ha'>";
    for (int i = 1; i < 30; ++i) {
        const auto inner = "&e" + std::to_string(i - 1) + ';';
        laughs += "<!ENTITY e" + std::to_string(i) + " '" + inner + inner + inner + inner + "'>";
    }
    EXPECT_EQ(outcome("A.xmp", laughs + "]>" + xmp("crs:Name='&e29;'")), "unreadable");

    std::string nested;
    for (int i = 0; i < 1'000'000; ++i) nested += "<a>";
    EXPECT_EQ(outcome("A.xmp", packet(nested)), "unreadable");
}

TEST(DevelopPresetTest, settingsOfXMPFiles) {
    const auto preset =
        read("A.xmp",
             packet("<rdf:Description crs:Version='15.0' crs:Exposure2012='+0.35' crs:Clarity2012='-20' "
                    "crs:ConvertToGrayscale='False' crs:HasSettings='True' crs:Odd=' 1' crs:Infinite='inf' "
                    "crs:Words='+0.35 or so' crs:Hexadecimal='0x10' crs:Signs='+-1' crs:true='true' "
                    "crs:Empty='' Exposure='9'>"
                    "<crs:Exposure2012>9</crs:Exposure2012><crs:Texture>\n +15 </crs:Texture>"
                    "<crs:ToneCurvePV2012><rdf:Seq><rdf:li>0, 0</rdf:li><rdf:li> 64,+50.5\n</rdf:li>"
                    "<rdf:li>12</rdf:li><rdf:li>1, x</rdf:li><rdf:li>1, 2, 3</rdf:li><rdf:li>,</rdf:li>"
                    "<rdf:li/><rdf:li>255, 255</rdf:li></rdf:Seq></crs:ToneCurvePV2012>"
                    "<crs:ToneCurveName2012>Linear</crs:ToneCurveName2012>"
                    "<crs:Group><rdf:Alt><rdf:li>G</rdf:li></rdf:Alt></crs:Group>"
                    "<crs:MaskGroup><rdf:Seq><rdf:li><rdf:Description crs:Exposure2012='3' "
                    "crs:LocalExposure='4'/></rdf:li></rdf:Seq></crs:MaskGroup></rdf:Description>"
                    "<rdf:Description crs:Clarity2012='7' crs:Dehaze='5'>"
                    "<crs:Texture>8</crs:Texture></rdf:Description>"));
    ASSERT_TRUE(preset.hasValue());
    EXPECT_THAT(preset->settings,
                UnorderedElementsAre(
                    Pair("Version", PresetValue{15.0}), Pair("Exposure2012", PresetValue{0.35}),
                    Pair("Clarity2012", PresetValue{-20.0}), Pair("ConvertToGrayscale", PresetValue{false}),
                    Pair("HasSettings", PresetValue{true}), Pair("Odd", PresetValue{" 1"}),
                    Pair("Infinite", PresetValue{"inf"}), Pair("Words", PresetValue{"+0.35 or so"}),
                    Pair("Hexadecimal", PresetValue{16.0}), Pair("Signs", PresetValue{"+-1"}),
                    Pair("true", PresetValue{"true"}), Pair("Empty", PresetValue{""}),
                    Pair("Texture", PresetValue{15.0}),
                    Pair("ToneCurvePV2012", PresetValue{List{0, 0, 64, 50.5, 255, 255}}),
                    Pair("ToneCurveName2012", PresetValue{"Linear"}), Pair("Dehaze", PresetValue{5.0})));
}

TEST(DevelopPresetTest, aLookNamesTheProfileWhereNothingElseDoes) {
    const std::vector<std::tuple<std::string, std::string, std::string>> rows{
        {"",
         look("<rdf:Description crs:Name='Adobe Vivid' crs:Amount='1'><crs:Parameters><rdf:Description "
              "crs:Exposure2012='4' crs:Name='Wrong'/></crs:Parameters></rdf:Description>"),
         "Adobe Vivid"},
        {"", look("<rdf:Description><crs:Name>Adobe Vivid</crs:Name></rdf:Description>"), "Adobe Vivid"},
        {"", "<crs:Look crs:Name='Adobe Vivid'/>", "Adobe Vivid"},
        {"crs:CameraProfile='Embedded'", look("<rdf:Description crs:Name='Adobe Vivid'/>"), "Embedded"},
        {"",
         look("<rdf:Description crs:Name='Adobe Vivid'/>") +
             "<crs:CameraProfile>Embedded</crs:CameraProfile>",
         "Embedded"},
        {"", look("<rdf:Description crs:Name='12'/>"), "12"},
        {"", look("<rdf:Description crs:Name=''/>"), "none"},
        {"", look("Adobe Vivid<b><rdf:Description crs:Name='Adobe Vivid'/></b>"), "none"},
    };
    for (const auto& [attributes, children, profile] : rows) {
        const auto preset = read("A.xmp", xmp(attributes, children));
        ASSERT_TRUE(preset.hasValue());
        const auto found = preset->settings.find("CameraProfile");
        EXPECT_EQ(found != preset->settings.end() ? std::get<std::string>(found->second) : "none", profile)
            << children;
        EXPECT_FALSE(preset->settings.contains("Exposure2012"));
        EXPECT_EQ(preset->title, "A");
    }
}

TEST(DevelopPresetTest, whatThePreviewLeavesOutIsNamed) {
    const auto unsupported = [](PresetSettings settings) {
        return DevelopPreset::of("", "", std::move(settings)).unsupportedSettings;
    };
    EXPECT_THAT(unsupported({{"RedHue", 5.0}, {"ShadowTint", -1.0}, {"CameraProfile", "Portrait X"}}),
                ElementsAre("Calibration", "Profile (Portrait X)"));
    EXPECT_THAT(unsupported({{"CameraProfile", "adobe color"}}), ElementsAre("Profile (adobe color)"));
    EXPECT_THAT(
        unsupported({{"RedHue", 0.0}, {"BlueSaturation", "5"}, {"GreenHue", true}, {"CameraProfile", 3.0}}),
        IsEmpty());
    for (const auto* profile : {"Camera Standard", "Embedded", "Adobe Standard", "Adobe Color", "Adobe Vivid",
                                "Adobe Monochrome", "Camera Monochrome"}) {
        EXPECT_THAT(unsupported({{"CameraProfile", profile}}), IsEmpty()) << profile;
    }
}

TEST(DevelopPresetTest, loadsFilesAndNothingElse) {
    const TemporaryFolder folder;
    const auto url = folder.write("Warm.lrtemplate", lua("Exposure2012 = 1"));
    const auto preset = DevelopPreset::load(url);
    ASSERT_TRUE(preset.hasValue());
    EXPECT_EQ(preset->id, "Warm.lrtemplate");
    EXPECT_EQ(preset->title, "Warm");
    EXPECT_FALSE(preset->summary);
    EXPECT_EQ(preset->amount, 1);
    EXPECT_FALSE(preset->look.isIdentity);
    EXPECT_TRUE(preset->adjustments.isIdentity);
    EXPECT_NE(preset->revision, DevelopPreset::load(url)->revision);

    ASSERT_EQ(::mkfifo(folder.at("pipe.xmp").path().c_str(), 0600), 0);
    folder.makeFolder("folder.xmp");
    folder.write("MyLook.txt", lua(""));
    for (const auto* name : {"pipe.xmp", "folder.xmp", "missing.xmp", "MyLook.txt"}) {
        const auto failed = DevelopPreset::load(folder.at(name));
        ASSERT_FALSE(failed.hasValue()) << name;
        EXPECT_EQ(message(failed.error()),
                  name + std::string{" isn't a Lightroom preset this app can read."});
    }
    EXPECT_EQ(message({Kind::notADevelopPreset, "a {}.xmp"}), "a {}.xmp isn't a Develop preset.");
}

TEST(DevelopPresetTest, theTitleShowsAStrengthThatIsNotFull) {
    const auto preset = DevelopPreset::of("", "Warm", {});
    const std::vector<std::pair<double, std::string>> rows{
        {1, "Warm"},    {1.5, "Warm"},        {0.65, "Warm 65%"},  {0.655, "Warm 66%"},
        {0, "Warm 0%"}, {0.995, "Warm 100%"}, {0.125, "Warm 13%"}, {0.004, "Warm 0%"}};
    for (const auto& [amount, title] : rows) EXPECT_EQ(preset.withAmount(amount).titleWithAmount(), title);
}

TEST(DevelopPresetTest, editsBecomeTheSecondLook) {
    LightAdjustments light;
    light.set(Slider::exposure, 0.5);
    light.set(Slider::contrast, -30);
    light.set(Slider::highlights, 20);
    light.set(Slider::shadows, -10);
    light.set(Slider::whites, 40);
    light.set(Slider::blacks, -50);
    const PresetLook edits{{{"Exposure2012", 0.5},
                            {"Contrast2012", -30.0},
                            {"Highlights2012", 20.0},
                            {"Shadows2012", -10.0},
                            {"Whites2012", 40.0},
                            {"Blacks2012", -50.0}}};
    const RGB color{0.2, 0.5, 0.7};
    const std::optional preset = DevelopPreset::of("a", "A", {{"Saturation", -100.0}}).withAmount(0.25);

    EXPECT_FALSE(DevelopPreset::combining(std::nullopt, {}));
    EXPECT_EQ(DevelopPreset::combining(preset, {})->revision, preset->revision);
    const auto alone = DevelopPreset::combining(std::nullopt, light);
    EXPECT_TRUE(alone->look.isIdentity);
    EXPECT_EQ(alone->apply(color), edits.apply(color));
    const auto both = DevelopPreset::combining(preset, light);
    EXPECT_EQ(both->title, "A");
    EXPECT_EQ(both->apply(color), edits.apply(preset->apply(color)));
    EXPECT_NEAR(preset->apply(color)[0], 0.2 + (0.299 * 0.2 + 0.587 * 0.5 + 0.114 * 0.7 - 0.2) * 0.25, 1e-12);
}

TEST(DevelopPresetTest, whateverDrawsDifferentlyHasItsOwnRevision) {
    const std::optional preset = DevelopPreset::of("a", "A", {});
    const auto revision = [&](const std::optional<DevelopPreset>& base, Slider slider, double value) {
        LightAdjustments light;
        light.set(slider, value);
        return DevelopPreset::combining(base, light)->revision;
    };
    auto direct = preset;
    direct->amount = 0.5;
    std::vector<PresetRevision> revisions{preset->revision, preset->withAmount(0.5).revision,
                                          revision(direct, Slider::exposure, 1)};
    for (const auto& base :
         {preset, std::optional{preset->withAmount(0.5)}, std::optional<DevelopPreset>{}}) {
        for (const auto slider : LightAdjustments::sliders) {
            for (const double value : {1.0, -1.0, 2.0}) revisions.push_back(revision(base, slider, value));
        }
    }
    const std::set<PresetRevision> different{revisions.begin(), revisions.end()};
    EXPECT_EQ(different.size(), revisions.size());
    EXPECT_EQ(revision(preset, Slider::whites, 3), revision(preset, Slider::whites, 3)) << "caches must hit";
}

} // namespace
} // namespace kelvara
