#include "cli/CommandLine.h"

#include <cstdlib>
#include <unistd.h>

namespace kelvara {
namespace {

using Strings = std::vector<std::string>;

class DeleteCommandTest : public CommandLineTest {
protected:
    void SetUp() override { ::setenv("XDG_DATA_HOME", target.url().path().c_str(), 1); }
    std::string path(std::string_view name) const { return card.at(name).path(); }
};

TEST_F(DeleteCommandTest, theTrashTakesTheFilesAndSidecarsThatNothingNeeds) {
    for (const auto* name : {"a.NEF", "a.JPG", "a.xmp", "b.NEF", "b.xmp", "caf\xE9.jpg"}) card.write(name);
    auto result = run({"delete", path("a.NEF"), path("b.NEF"), path("b.NEF"), path("caf\xE9.jpg")});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "3 moved to the Trash, sidecars with them: 1, failed: 0\n");
    EXPECT_EQ(card.files(), (Strings{"a.JPG", "a.xmp"}));
    EXPECT_EQ(target.files("Trash/files"), (Strings{"a.NEF", "b.NEF", "b.xmp", "caf\xE9.jpg"}));
}

TEST_F(DeleteCommandTest, pairsGoAlongForGoodAndADryRunTellsSoBefore) {
    for (const auto* name : {"a.NEF", "a.JPG", "a.xmp", "b.JPG"}) card.write(name);
    Strings arguments{"delete", path("a.JPG"), "--permanently", "--with-pairs", "--dry-run"};
    EXPECT_EQ(run(arguments).output, "erase  " + path("a.JPG") + "\nerase  " + path("a.NEF") + "\nerase  " +
                                         path("a.xmp") +
                                         "\n2 to be erased, sidecars with them: 1, failed: 0\n");
    EXPECT_EQ(card.files().size(), 4U);
    arguments.back() = "--json";
    const auto json = run(arguments).json();
    EXPECT_EQ(json.at("permanently"), true);
    EXPECT_EQ(json.at("deleted"), 2);
    EXPECT_EQ(json.at("files").at(1).at("path"), path("a.NEF"));
    EXPECT_EQ(json.at("sidecars").at(0).at("url"), "file://" + path("a.xmp"));
    EXPECT_EQ(card.files(), Strings{"b.JPG"});
    EXPECT_FALSE(TemporaryFolder::exists(target / "Trash"));
}

TEST_F(DeleteCommandTest, whatIsNoPhotoIsNamedAndTheOthersGo) {
    card.write("a.jpg");
    card.write("notes.txt");
    card.write("folder.jpg/inside.jpg");
    card.write("kept.jpg");
    ASSERT_EQ(::symlink("kept.jpg", card.at("link.jpg").path().c_str()), 0);
    const auto result = run(
        {"delete", path("none.jpg"), path("notes.txt"), path("folder.jpg"), path("link.jpg"), path("a.jpg")});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.output, "1 moved to the Trash, sidecars with them: 0, failed: 4\n");
    EXPECT_THAT(result.errors, testing::StartsWith("kelvara-cli: " + path("none.jpg") +
                                                   ": No such file or directory\nkelvara-cli: " +
                                                   path("notes.txt") + ": It isn't a photo or video.\n"));
    EXPECT_EQ(card.files(), (Strings{"folder.jpg/inside.jpg", "kept.jpg", "link.jpg", "notes.txt"}));
    EXPECT_EQ(run({"delete"}).exitCode, 2);
}

} // namespace
} // namespace kelvara
