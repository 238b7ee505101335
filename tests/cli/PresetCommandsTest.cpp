#include "cli/CommandLine.h"

namespace kelvara {
namespace {

class PresetCommandsTest : public CommandLineTest {
protected:
    void SetUp() override {
        card.write("warm.lrtemplate",
                   "s = { title = \"Warm\", value = { settings = { Exposure2012 = 1, RedHue = 5,\n"
                   "  CameraProfile = \"Portrait\\nX\", ConvertToGrayscale = false,\n"
                   "  ToneCurvePV2012 = { 0, 0, 255, 204 } } } }\n");
        card.write("colors", "0 0.5 1e0\n0.25\t0.25 +0.25\n");
    }
    [[nodiscard]] std::string path(std::string_view name) const { return card.at(name).path(); }
    [[nodiscard]] CommandResult look(const std::vector<std::string>& more) const {
        std::vector<std::string> arguments{"look", "--preset", path("warm.lrtemplate"), "--colors"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments);
    }
};

TEST_F(PresetCommandsTest, aPresetIsDescribed) {
    const auto text = run({"preset", path("warm.lrtemplate")});
    EXPECT_EQ(text.exitCode, 0) << text.errors;
    EXPECT_EQ(text.output, "Warm\n"
                           "Not shown: Calibration\n"
                           "Not shown: Profile (Portrait\xEF\xBF\xBDX)\n"
                           "CameraProfile  Portrait\xEF\xBF\xBDX\n"
                           "ConvertToGrayscale  false\n"
                           "Exposure2012  1\n"
                           "RedHue  5\n"
                           "ToneCurvePV2012  [0, 0, 255, 204]\n");
    const auto json = run({"preset", path("warm.lrtemplate"), "--json"}).json();
    EXPECT_EQ(json.at("id"), "warm.lrtemplate");
    EXPECT_EQ(json.at("file"), path("warm.lrtemplate"));
    EXPECT_EQ(json.at("title"), "Warm");
    EXPECT_EQ(json.at("unsupportedSettings"), nlohmann::json({"Calibration", "Profile (Portrait\nX)"}));
    EXPECT_EQ(json.at("settings").at("Exposure2012"), 1.0);
    EXPECT_EQ(json.at("settings").at("ToneCurvePV2012"), nlohmann::json({0.0, 0.0, 255.0, 204.0}));
    EXPECT_EQ(json.at("look").at("master").at("ys"), nlohmann::json({0.0, 0.8}));
    EXPECT_TRUE(json.at("look").at("grain").is_null());
    EXPECT_EQ(json.at("look").at("isIdentity"), false);
}

TEST_F(PresetCommandsTest, coloursGoThroughTheLook) {
    const auto full = look({path("colors")});
    EXPECT_EQ(full.exitCode, 0) << full.errors;
    const auto colors = look({path("colors"), "--json", "--amount", "0.5"}).json();
    EXPECT_EQ(colors.at("title"), "Warm 50%");
    std::istringstream lines{full.output};
    const std::vector<double> inputs{0, 0.5, 1, 0.25, 0.25, 0.25};
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        double value = -1;
        lines >> value;
        EXPECT_NEAR(colors.at("colors").at(i / 3).at(i % 3), (inputs[i] + value) / 2, 1e-15);
    }
    EXPECT_EQ(look({path("colors"), "--amount", "0"}).output, "0 0.5 1\n0.25 0.25 0.25\n");
}

TEST_F(PresetCommandsTest, whatMakesNoSenseIsRefused) {
    card.write("bad", "0 0 0\n0 0 1.5\n");
    const auto bad = look({path("bad")});
    EXPECT_EQ(bad.exitCode, 1);
    EXPECT_EQ(bad.errors, "kelvara-cli: Line 2 isn't three numbers from 0 to 1.\n");
    for (const auto* line : {"0 0\n", "0 0 0 0\n", "0 0 x\n", "\n", "0 0 nan\n"}) {
        card.write("bad", line);
        EXPECT_EQ(look({path("bad")}).exitCode, 1) << line;
    }
    EXPECT_EQ(look({path("missing")}).exitCode, 1);
    for (const auto* amount : {"2", "-0.1", "nan", "inf", "half"})
        EXPECT_EQ(look({path("colors"), "--amount", amount}).exitCode, 2) << amount;
    EXPECT_EQ(run({"preset", path("missing.xmp")}).exitCode, 1);
    EXPECT_EQ(run({"preset", path("colors")}).errors,
              "kelvara-cli: colors isn't a Lightroom preset this app can read.\n");
}

} // namespace
} // namespace kelvara
