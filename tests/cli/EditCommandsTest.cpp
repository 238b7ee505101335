#include "cli/CommandLine.h"
#include "samplecard/JPEG.h"

#include <sys/stat.h>

namespace kelvara {
namespace {

using namespace samplecard;
using Strings = std::vector<std::string>;
using JSON = nlohmann::json;

class EditCommandsTest : public CommandLineTest {
protected:
    void SetUp() override {
        card.write("a.jpg", "jpeg");
        card.write("a.NEF", "raw");
        card.write("b.jpg", "jpeg");
    }
    [[nodiscard]] std::string path(std::string_view name) const { return card.at(name).path(); }
    [[nodiscard]] CommandResult edits(Strings arguments) const {
        arguments.insert(arguments.begin(), "edits");
        arguments.insert(arguments.end(), {"--file", file.path()});
        return run(arguments);
    }
    [[nodiscard]] JSON editsOf(std::string_view name) const {
        return edits({path(name), "--json"}).json().at("files").at(0).at("edits");
    }

    FileURL file = target.at("new/Edits.json");
};

TEST_F(EditCommandsTest, editsAreSetForTheShotAndShown) {
    EXPECT_EQ(editsOf("a.jpg"), JSON::object());
    EXPECT_FALSE(TemporaryFolder::exists(file)) << "showing writes nothing";
    const auto set = edits({path("a.jpg"), path("b.jpg"), "--set", "exposure=0.35", "--set", "blacks=-20"});
    EXPECT_EQ(set.exitCode, 0) << set.errors;
    EXPECT_EQ(set.output, "");
    EXPECT_EQ(edits({path("a.NEF")}).output, "exposure +0.35  blacks -20  " + path("a.NEF") + "\n");
    EXPECT_EQ(edits({path("a.jpg"), "--set", "exposure=0.004", "--set", "whites=3"}).exitCode, 0);
    EXPECT_EQ(editsOf("a.jpg"), JSON({{"blacks", -20}, {"whites", 3}}));
    EXPECT_EQ(edits({path("a.jpg"), "--reset", "--set", "contrast=1"}).exitCode, 0);
    EXPECT_EQ(editsOf("a.jpg"), JSON({{"contrast", 1}}));
    EXPECT_EQ(edits({path("a.jpg"), "--reset"}).exitCode, 0);
    EXPECT_EQ(editsOf("a.jpg"), JSON::object());
    EXPECT_EQ(editsOf("b.jpg"), JSON({{"blacks", -20}, {"exposure", 0.35}}));
}

TEST_F(EditCommandsTest, theWindowsOwnFileIsTheDefault) {
    ::setenv("XDG_DATA_HOME", target.url().path().c_str(), 1);
    EXPECT_EQ(run({"edits", path("a.jpg"), "--set", "shadows=40"}).exitCode, 0);
    ::unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(TemporaryFolder::read(target.at("kelvara/Edits.json")),
              "{\n \"file://" + path("a.xmp") + "\": {\"shadows\": 40}\n}\n");
}

TEST_F(EditCommandsTest, whatCantBeDoneIsToldAndNothingSaved) {
    for (const auto* setting :
         {"exposure", "exposure=", "exposure=5.1", "contrast=nan", "Contrast=1", "grain=1", "=1"})
        EXPECT_EQ(edits({path("a.jpg"), "--set", setting}).exitCode, 2) << setting;
    EXPECT_EQ(edits({path("a.jpg"), path("missing.jpg"), "--set", "contrast=1"}).exitCode, 1);
    EXPECT_FALSE(TemporaryFolder::exists(file));
    file = target.write("file").child("Edits.json");
    const auto refused = edits({path("a.jpg"), "--set", "contrast=1"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.errors, testing::StartsWith("kelvara-cli: Couldn't save the edits: "));
}

TEST_F(EditCommandsTest, autoToneFindsEditsThatRenderDraws) {
    Picture dark{96, 64};
    for (std::size_t i = 0; i < dark.samples.size(); ++i)
        dark.samples[i] = static_cast<std::uint16_t>(i * 800 % 40000);
    card.write("dark.jpg", photoJPEG(dark, {}, {}));
    const auto text = run({"auto-tone", path("dark.jpg")});
    EXPECT_EQ(text.exitCode, 0) << text.errors;
    EXPECT_THAT(text.output,
                testing::MatchesRegex("exposure    \\+[0-9.]+\ncontrast    .*\nblacks      [-+0-9]+\n"));
    const auto json = run({"auto-tone", path("dark.jpg"), "--json"}).json();
    double sum = 0;
    for (const double fraction : json.at("luminance")) sum += fraction;
    EXPECT_NEAR(sum, 1, 1e-9);
    card.write("bright.xmp", "<r xmlns:crs=\"http://ns.adobe.com/camera-raw-settings/1.0/\" "
                             "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description "
                             "crs:Exposure2012=\"1\"/></r>");
    const auto bright = run({"auto-tone", path("dark.jpg"), "--preset", path("bright.xmp"), "--json"}).json();
    EXPECT_LT(bright.at("edits").at("exposure"), json.at("edits").at("exposure"));

    const auto render = [&](const std::string& exposure) {
        const auto output = target.at("out.png");
        const auto result =
            run({"render", path("dark.jpg"), "--light", "exposure=" + exposure, "--output", output.path()});
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        return TemporaryFolder::read(output);
    };
    EXPECT_NE(render("0"), render(std::to_string(json.at("edits").at("exposure").get<double>())));
    EXPECT_EQ(run({"auto-tone", path("a.jpg")}).exitCode, 1) << "no picture";
}

} // namespace
} // namespace kelvara
