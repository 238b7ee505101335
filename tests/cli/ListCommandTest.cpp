#include "cli/CommandLine.h"

#include <sys/stat.h>

namespace kelvara {
namespace {

using Strings = std::vector<std::string>;

class ListCommandTest : public CommandLineTest {
protected:
    void SetUp() override {
        photo("100/b.NEF", "12345", 1'000'000'000);
        photo("100/b.JPG", "1", 1'000'000'001);
        photo("a.MOV", "123", 1'000'000'100);
        photo("caf\xE9.heic", "12", 999'999'999);
        card.write("notes.txt", "no photo");
    }
    Strings listed(Strings options) const {
        Strings arguments{"list", card.url().path(), "--json"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const auto result = run(arguments);
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        Strings names;
        const auto json = result.json();
        for (const auto& item : json.at("items")) {
            names.push_back(std::filesystem::path{item.at("path").get<std::string>()}.filename());
        }
        return names;
    }
};

TEST_F(ListCommandTest, theFieldsOfAnItemAreThoseOfTheFile) {
    const auto json = run({"list", card.url().path(), "--json"}).json();
    EXPECT_EQ(json.at("folder"), card.url().path());
    EXPECT_EQ(json.at("folderURL"), "file://" + card.url().path());
    EXPECT_EQ(json.at("count"), 4);
    EXPECT_EQ(json.at("totalSize"), 11);
    const auto& latin = json.at("items").at(0);
    EXPECT_EQ(latin.at("path"), card.url().path() + "/caf\uFFFD.heic");
    EXPECT_EQ(latin.at("url"), "file://" + card.url().path() + "/caf%E9.heic");
    EXPECT_EQ(latin.at("kind"), "heif");
    EXPECT_EQ(latin.at("size"), 2);
    EXPECT_EQ(latin.at("date"), "2001-09-09T01:46:39.000000Z");
    EXPECT_EQ(json.at("items").at(1).at("kind"), "jpeg");
    EXPECT_EQ(json.at("items").at(2).at("kind"), "raw");
    EXPECT_EQ(json.at("items").at(3).at("kind"), "video");
}

TEST_F(ListCommandTest, sortsAndFiltersAsAsked) {
    const std::string latin = "caf\uFFFD.heic";
    // Of the files of one shot the order is the names', not the dates' or sizes'.
    EXPECT_EQ(listed({}), (Strings{latin, "b.JPG", "b.NEF", "a.MOV"}));
    EXPECT_EQ(listed({"--sort", "name"}), (Strings{"a.MOV", "b.JPG", "b.NEF", latin}));
    EXPECT_EQ(listed({"--sort", "fileSize", "--descending"}).back(), latin);
    EXPECT_EQ(listed({"--search", "B."}), (Strings{"b.JPG", "b.NEF"}));
    EXPECT_EQ(listed({"--hide", "nef", "--hide", ".MOV"}), (Strings{latin, "b.JPG"}));
    EXPECT_EQ(listed({"--search", "nothing"}), Strings{});
}

TEST_F(ListCommandTest, textIsOneAlignedLineAFileWhateverItsName) {
    photo("new\nline\x1B[31m.jpg", "1", 1'500'000'000);
    const auto result = run({"list", card.url().path(), "--hide", "nef", "--hide", "heic", "--hide", "mov"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "2001-09-09 01:46:41     1 byte  jpeg   100/b.JPG\n"
                             "2017-07-14 02:40:00     1 byte  jpeg   new\uFFFDline\uFFFD[31m.jpg\n");
    EXPECT_EQ(result.errors, "");
}

TEST_F(ListCommandTest, aFolderThatCannotBeListedIsAFailure) {
    for (const auto* name : {"none", "a.MOV"}) {
        const auto result = run({"list", card.at(name).path(), "--json"});
        EXPECT_EQ(result.exitCode, 1) << name;
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.errors, testing::StartsWith("kelvara-cli: " + card.at(name).path()));
    }
    EXPECT_EQ(run({"list", ""}).exitCode, 1);
    card.makeFolder("empty");
    EXPECT_EQ(run({"list", card.at("empty").path()}).exitCode, 0);
}

TEST_F(ListCommandTest, aWrongCommandLineIsToldApartFromAFailure) {
    const auto folder = card.url().path();
    for (const auto& arguments : std::vector<Strings>{{},
                                                      {"show"},
                                                      {"list"},
                                                      {"list", folder, folder},
                                                      {"list", folder, "--sort", "colour"},
                                                      {"list", folder, "--hide"},
                                                      {"copy", folder}}) {
        const auto result = run(arguments);
        EXPECT_EQ(result.exitCode, 2) << testing::PrintToString(arguments);
        EXPECT_EQ(result.output, "");
        EXPECT_NE(result.errors, "");
    }
    EXPECT_EQ(run({"--help"}).exitCode, 0);
    EXPECT_EQ(run({"list", "--help"}).exitCode, 0);
    EXPECT_EQ(run({"--version"}).output, "kelvara-cli " KELVARA_VERSION "\n");
}

} // namespace
} // namespace kelvara
