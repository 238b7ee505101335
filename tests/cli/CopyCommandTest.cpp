#include "cli/CommandLine.h"

#include <csignal>
#include <pty.h>
#include <sys/stat.h>

namespace kelvara {
namespace {

using Strings = std::vector<std::string>;

class CopyCommandTest : public CommandLineTest {
protected:
    std::string from = card.url().path();
    std::string to = target.at("new/trip").path();
};

TEST_F(CopyCommandTest, copiesEverythingOnceAndSkipsItTheNextTime) {
    photo("1/a.NEF", "raw", 1'000'000'000);
    card.write("1/a.xmp", "stars");
    photo("2/a.NEF", "other", 1'000'000'001);
    photo("caf\xE9.jpg", "x", 1'000'000'002);

    auto json = run({"copy", from, to, "--json"}).json();
    EXPECT_EQ(json.at("destination"), to);
    EXPECT_EQ(json.at("dryRun"), false);
    EXPECT_EQ(json.at("cancelled"), false);
    EXPECT_EQ(json.at("copied"), 3);
    EXPECT_EQ(json.at("renamed"), 1);
    EXPECT_EQ(json.at("copiedBytes"), 9);
    EXPECT_EQ(json.at("failures"), nlohmann::json::array());
    const auto& third = json.at("files").at(2);
    EXPECT_EQ(third.at("sourceURL"), "file://" + from + "/caf%E9.jpg");
    EXPECT_EQ(third.at("destinationURL"), "file://" + to + "/caf%E9.jpg");
    EXPECT_EQ(third.at("action"), "copy");
    EXPECT_EQ(target.files("new/trip"), (Strings{"a-1.NEF", "a.NEF", "a.xmp", "caf\xE9.jpg"}));
    EXPECT_EQ(TemporaryFolder::read(target.at("new/trip/a-1.NEF")), "other");

    json = run({"copy", from, to, "--json"}).json();
    EXPECT_EQ(json.at("copied"), 0);
    EXPECT_EQ(json.at("skipped"), 3);
    EXPECT_EQ(json.at("files").at(0).at("action"), "skip");
    const auto text = run({"copy", from, to});
    EXPECT_EQ(text.exitCode, 0);
    EXPECT_THAT(text.output, testing::MatchesRegex("0 copied .*, 3 already there, 0 renamed, 0 failed\n"));
    EXPECT_EQ(text.errors, ""); // no progress where there is no terminal
}

TEST_F(CopyCommandTest, aDryRunTellsWhatARunDoesAndWritesNothing) {
    photo("a.NEF", "raw", 1'000'000'000);
    const Strings arguments{"copy", from, to, "--date-folders", "--json"};
    auto dryArguments = arguments;
    dryArguments.push_back("--dry-run");
    const auto dry = run(dryArguments).json();
    EXPECT_FALSE(TemporaryFolder::exists(target.at("new")));
    EXPECT_EQ(dry.at("dryRun"), true);
    const auto wet = run(arguments).json();
    EXPECT_EQ(wet.at("files"), dry.at("files"));
    EXPECT_EQ(wet.at("copied"), dry.at("copied"));
    EXPECT_EQ(target.files("new/trip"), Strings{"2001-09-09/a.NEF"});
}

TEST_F(CopyCommandTest, verificationLooksAtContents) {
    photo("a.NEF", "raw", 1'000'000'000);
    EXPECT_EQ(run({"copy", from, to, "--verify", "--json"}).json().at("copied"), 1);
    EXPECT_EQ(run({"copy", from, to, "--verify", "--json"}).json().at("skipped"), 1);
    target.write("new/trip/a.NEF", "war");
    EXPECT_EQ(run({"copy", from, to, "--json"}).json().at("skipped"), 1);
    EXPECT_EQ(run({"copy", from, to, "--verify", "--json"}).json().at("renamed"), 1);
    EXPECT_EQ(TemporaryFolder::read(target.at("new/trip/a-1.NEF")), "raw");
}

TEST_F(CopyCommandTest, refusesADestinationInsideTheFolderAlsoBehindALink) {
    photo("a.NEF", "raw", 1'000'000'000);
    card.makeFolder("inside");
    ASSERT_EQ(::symlink(card.at("inside").path().c_str(), target.at("link").path().c_str()), 0);
    for (const auto& destination : {card.at("new").path(), target.at("link").path()}) {
        const auto result = run({"copy", from, destination});
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.errors,
                  "kelvara-cli: Choose a destination outside the folder you're copying from.\n");
    }
    EXPECT_EQ(card.files(), Strings{"a.NEF"});
    EXPECT_EQ(run({"copy", card.at("none").path(), to}).exitCode, 1);
    EXPECT_FALSE(TemporaryFolder::exists(target.at("new")));
}

TEST_F(CopyCommandTest, aFileThatFailsIsNamedAndTheOthersAreCopied) {
    photo("a.NEF", "raw", 1'000'000'000);
    photo("b.NEF", "raw", 1'000'000'001);
    target.makeFolder("new/trip/a.NEF.partial"); // nothing can be written there
    const auto result = run({"copy", from, to});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, testing::StartsWith("kelvara-cli: " + from + "/a.NEF: "));
    EXPECT_EQ(target.files("new/trip"), Strings{"b.NEF"});
    const auto json = run({"copy", from, to, "--json"}).json();
    EXPECT_EQ(json.at("failed"), 1);
    EXPECT_EQ(json.at("failures").at(0).at("source"), from + "/a.NEF");
}

TEST_F(CopyCommandTest, interruptedOnATerminalItFinishesWhatItBegan) {
    constexpr int count = 3000;
    for (int i = 0; i < count; ++i) card.write(std::to_string(i) + ".JPG", "photo");
    int terminal = -1;
    const auto child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child < 0) GTEST_SKIP() << "this system gives out no pseudo-terminals";
    if (child == 0) becomeProgram({"copy", from, to});

    // Progress shows that files are being copied; most of them are then still to come.
    std::string shown;
    char buffer[4096];
    bool wasInterrupted = false;
    for (;;) {
        const auto length = ::read(terminal, buffer, sizeof buffer);
        if (length <= 0) break; // the program's end of the terminal is closed
        shown.append(buffer, static_cast<std::size_t>(length));
        if (!wasInterrupted && shown.find(" 1 of 3000 files") != std::string::npos) {
            EXPECT_EQ(::write(terminal, "\x03", 1), 1); // Ctrl-C
            wasInterrupted = true;
        }
    }
    EXPECT_EQ(exitCodeOf(child), 130);
    ::close(terminal);
    EXPECT_THAT(shown, testing::HasSubstr("[--------------------]   0 %  1 of 3000 files"));
    EXPECT_THAT(shown, testing::HasSubstr("Cancelled: "));
    const auto copied = target.files("new/trip");
    EXPECT_GT(copied.size(), 0U);
    EXPECT_LT(copied.size(), static_cast<std::size_t>(count));
    for (const auto& name : copied) {
        EXPECT_THAT(name, testing::EndsWith(".JPG"));
        EXPECT_EQ(TemporaryFolder::read(target.at("new/trip/" + name)), "photo");
    }
}

} // namespace
} // namespace kelvara
