#include "cli/CommandLine.h"

#include <sstream>
#include <sys/stat.h>

namespace kelvara {
namespace {

using Strings = std::vector<std::string>;

class RatingCommandsTest : public CommandLineTest {
protected:
    Strings rated() const {
        const auto result = run({"ratings", card.url().path()});
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        Strings lines;
        std::istringstream stream{result.output};
        for (std::string line; std::getline(stream, line);) lines.push_back(line);
        return lines;
    }
};

TEST_F(RatingCommandsTest, aRatingLandsInTheSidecarOfTheShotAndComesBack) {
    const auto raw = photo("1/b.NEF", "raw", 1'000'000'001);
    const auto jpeg = photo("1/b.JPG", "jpeg", 1'000'000'001);
    photo("2/a.dng", "raw", 1'000'000'000);
    photo("2/c.JPG", "jpeg", 1'000'000'002);
    EXPECT_EQ(rated(), (Strings{"0  2/a.dng", "0  1/b.NEF"}));

    const auto json = run({"rate", jpeg.path(), "4", "--json"}).json();
    EXPECT_EQ(json.at("file"), jpeg.path());
    EXPECT_EQ(json.at("sidecar"), card.at("1/b.xmp").path());
    EXPECT_EQ(json.at("sidecarURL"), "file://" + card.at("1/b.xmp").path());
    EXPECT_EQ(json.at("stars"), 4);
    EXPECT_EQ(json.at("before"), 0);
    EXPECT_EQ(rated(), (Strings{"0  2/a.dng", "4  1/b.NEF"}));
    EXPECT_EQ(run({"rate", raw.path(), "2"}).output, "");
    EXPECT_EQ(rated(), (Strings{"0  2/a.dng", "2  1/b.NEF"}));

    const auto listed = run({"ratings", card.url().path(), "--json"}).json();
    EXPECT_EQ(listed.at("folder"), card.url().path());
    EXPECT_EQ(listed.at("count"), 2);
    const auto& second = listed.at("shots").at(1);
    EXPECT_EQ(second.at("path"), raw.path());
    EXPECT_EQ(second.at("sidecar"), card.at("1/b.xmp").path());
    EXPECT_EQ(second.at("stars"), 2);
}

TEST_F(RatingCommandsTest, theSameStarsAgainWriteNothing) {
    const auto raw = card.write("a.NEF");
    EXPECT_EQ(run({"rate", raw.path(), "0"}).exitCode, 0);
    EXPECT_FALSE(TemporaryFolder::exists(card.at("a.xmp")));
    EXPECT_EQ(run({"rate", raw.path(), "3"}).exitCode, 0);
    struct stat before {};
    struct stat after {};
    ASSERT_EQ(::stat(card.at("a.xmp").path().c_str(), &before), 0);
    EXPECT_EQ(run({"rate", raw.path(), "3", "--json"}).json().at("before"), 3);
    ASSERT_EQ(::stat(card.at("a.xmp").path().c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino) << "a sidecar is replaced when it is written";
}

TEST_F(RatingCommandsTest, aPhotoWithoutARawIsNotRatedOnDisk) {
    const auto jpeg = card.write("a.JPG");
    card.write("b.NEF");
    card.write("A.NEF"); // another shot, as names differ in case
    card.write("below/a.NEF");
    card.makeFolder("a.DNG");
    ASSERT_EQ(::symlink(card.at("b.NEF").path().c_str(), card.at("a.CR3").path().c_str()), 0);
    const auto result = run({"rate", jpeg.path(), "5"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.errors,
              "kelvara-cli: Lightroom ignores sidecars for files without a RAW, so this rating "
              "isn't written to disk.\n");
    EXPECT_FALSE(TemporaryFolder::exists(card.at("a.xmp")));
    card.write("a.cR2");
    EXPECT_EQ(run({"rate", jpeg.path(), "5"}).exitCode, 0);
    EXPECT_TRUE(TemporaryFolder::exists(card.at("a.xmp")));
}

TEST_F(RatingCommandsTest, whatCannotBeRatedStaysAsItIs) {
    const auto raw = card.write("a.NEF");
    card.write("a.xmp", "no XML");
    const auto result = run({"rate", raw.path(), "5", "--json"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "kelvara-cli: Couldn't save the rating for a.NEF: a.xmp exists but isn't valid "
                             "XMP, so it was left untouched.\n");
    EXPECT_EQ(TemporaryFolder::read(card.at("a.xmp")), "no XML");
    for (const auto* name : {"a.xmp", "none.NEF", ""}) {
        EXPECT_EQ(run({"rate", card.at(name).path(), "5"}).exitCode, 1) << name;
    }
    for (const auto* stars : {"6", "-1", "", "2.5", "five", "03"}) {
        EXPECT_EQ(run({"rate", raw.path(), stars}).exitCode, 2) << stars;
    }
    EXPECT_EQ(run({"rate", raw.path()}).exitCode, 2);
    EXPECT_EQ(run({"ratings", card.at("none").path()}).exitCode, 1);
    EXPECT_EQ(card.files(), (Strings{"a.NEF", "a.xmp"}));
}

} // namespace
} // namespace kelvara
