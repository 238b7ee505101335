#include "cli/CommandLine.h"
#include "samplecard/JPEG.h"

#include <algorithm>
#include <exiv2/exiv2.hpp>

namespace kelvara {
namespace {

using namespace samplecard;
using Strings = std::vector<std::string>;

class ExportCommandTest : public CommandLineTest {
protected:
    void SetUp() override {
        Shot shot;
        shot.time = 1'709'993'133;
        photo("a.jpg", photoJPEG(grey(96, 128), shot, {}), 1'000'000'000);
        photo("b.JPG", photoJPEG(grey(128, 96), shot, {}), 1'000'000'001);
    }
    [[nodiscard]] static Picture grey(int width, int height) {
        Picture picture{width, height};
        std::ranges::fill(picture.samples, 20'000);
        return picture;
    }
    [[nodiscard]] CommandResult runExport(const Strings& options) const {
        Strings arguments{"export", from, to};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return run(arguments);
    }
    [[nodiscard]] std::string made(std::string_view name) const {
        return TemporaryFolder::read(target.at("new").child(name));
    }

    std::string from = card.url().path();
    std::string to = target.at("new").path();
};

TEST_F(ExportCommandTest, makesAPictureOfEveryShotAndNamesWhatItCannotRead) {
    photo("a.NEF", "the same shot", 1'000'000'000);
    card.write("a.xmp", R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF
        xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#"><rdf:Description rdf:about=""
        xmlns:xmp="http://ns.adobe.com/xap/1.0/" xmp:Rating="4"/></rdf:RDF></x:xmpmeta>)");
    photo("caf\xE9.mov", "moving", 1'000'000'002);
    const auto dry = runExport({"--dry-run"});
    EXPECT_THAT(dry.output, testing::EndsWith("3 to export as JPEG, 0 to be renamed\n"));
    EXPECT_FALSE(TemporaryFolder::exists(target.at("new")));

    const auto result = runExport({"--json"});
    EXPECT_EQ(result.exitCode, 1);
    auto json = result.json();
    EXPECT_EQ(json.at("exported"), 2);
    EXPECT_EQ(json.at("failures").at(0).at("reason"), "Couldn't read caf\uFFFD.mov.");
    EXPECT_EQ(json.at("files").at(0).at("action"), "export");
    EXPECT_EQ(target.files("new"), (Strings{"a.jpg", "b.jpg"}));
    const auto image = Exiv2::ImageFactory::open(target.at("new/a.jpg").path());
    image->readMetadata();
    EXPECT_EQ(image->xmpData()["Xmp.xmp.Rating"].toString(), "4");

    std::filesystem::remove(card.at("caf\xE9.mov").path());
    const auto again = runExport({"--long-edge", "64"});
    EXPECT_EQ(again.exitCode, 0) << again.errors;
    EXPECT_THAT(again.output, testing::MatchesRegex("2 exported as JPEG .*, 2 renamed, 0 failed\n"));
    EXPECT_LT(made("a-1.jpg").size(), made("a.jpg").size());
}

TEST_F(ExportCommandTest, optionsChooseTheFormatAndWhatIsDrawn) {
    ASSERT_EQ(run({"edits", card.at("a.jpg").path(), "--set", "exposure=2", "--file", to + ".json"}).exitCode,
              0);
    const auto plain = [&](const Strings& options, std::string_view ending) {
        std::filesystem::remove_all(to);
        const auto result = runExport(options);
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        return std::pair{made("a" + std::string{ending}), made("b" + std::string{ending})};
    };
    const auto [a, b] = plain({"--format", "png"}, ".png");
    EXPECT_TRUE(a.starts_with("\x89PNG"));
    const auto edited = plain({"--format", "png", "--edits", "--edit-file", to + ".json"}, ".png");
    EXPECT_TRUE(edited.first != a); // long bytes: nobody wants them printed
    EXPECT_TRUE(edited.second == b);
    EXPECT_TRUE(plain({"--format", "png", "--bit-depth", "16"}, ".png").first != a);
    EXPECT_EQ(plain({"--format", "heif", "--no-location"}, ".heic").first.substr(4, 4), "ftyp");
    for (const auto& options : std::vector<Strings>{{"--format", "gif"},
                                                    {"--quality", "0.3"},
                                                    {"--bit-depth", "12"},
                                                    {"--long-edge", "0"},
                                                    {"--amount", "1"},
                                                    {"--verify"}}) {
        EXPECT_EQ(runExport(options).exitCode, 2) << options[0];
    }
}

} // namespace
} // namespace kelvara
