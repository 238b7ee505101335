#include "platform/linux/LinuxFileSystem.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <set>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kelvara {
namespace {

using Answer = FolderWalkVisitor::Answer;
using Kind = FileStatus::Kind;

/// Describes everything until it has met `limit` entries.
class Collector : public FolderWalkVisitor {
public:
    explicit Collector(std::size_t limit = 1'000'000) : m_limit{limit} {}

    Answer met(std::string_view) override { return ++entries >= m_limit ? Answer::stop : Answer::describe; }
    void described(std::string_view folder, std::string_view name, const FileStatus& status) override {
        paths.insert(std::string{folder} + '/' + std::string{name});
        kinds.insert(status.kind);
    }

    std::size_t entries = 0;
    std::set<std::string> paths;
    std::set<Kind> kinds;

private:
    std::size_t m_limit;
};

class LinuxFolderWalkTest : public testing::Test {
protected:
    std::set<std::string> walked(const FileURL& top) const {
        Collector collector;
        EXPECT_TRUE(files.walk(top, collector));
        std::set<std::string> relative;
        for (const auto& path : collector.paths) relative.insert(path.substr(top.path().size() + 1));
        return relative;
    }

    TemporaryFolder folder;
    LinuxFileSystem files;
};

TEST_F(LinuxFolderWalkTest, entersFoldersButNeitherHiddenOnesNorPackages) {
    folder.write("DCIM/100CAM/a.NEF");
    folder.write("DCIM/101CAM/deep/er/b.NEF");
    folder.write(".Trashes/x.jpg");
    folder.write("DCIM/._a.NEF");
    folder.write("Summer.photoslibrary/originals/c.jpg");
    folder.write("Old.LRDATA/d.jpg");
    folder.write("clip.mov/e.jpg"); // a folder with a film's name is a folder
    EXPECT_EQ(walked(folder.url()),
              (std::set<std::string>{"DCIM", "DCIM/100CAM", "DCIM/100CAM/a.NEF", "DCIM/101CAM",
                                     "DCIM/101CAM/deep", "DCIM/101CAM/deep/er", "DCIM/101CAM/deep/er/b.NEF",
                                     "Summer.photoslibrary", "Old.LRDATA", "clip.mov", "clip.mov/e.jpg"}));
}

TEST_F(LinuxFolderWalkTest, showsLinksWithoutFollowingThem) {
    folder.write("card/real/a.jpg");
    folder.write("outside/b.jpg");
    ASSERT_EQ(::symlink("..", folder.at("card/loop").path().c_str()), 0);
    ASSERT_EQ(::symlink("../outside", folder.at("card/elsewhere").path().c_str()), 0);
    EXPECT_EQ(walked(folder.at("card")), (std::set<std::string>{"real", "real/a.jpg", "loop", "elsewhere"}));
    // The folder that is asked for may be reached by a link.
    EXPECT_EQ(walked(folder.at("card/elsewhere")), std::set<std::string>{"b.jpg"});
}

TEST_F(LinuxFolderWalkTest, namesAreBytesOfAnyKindAndLength) {
    const std::string longest(251, 'x');
    folder.write("caf\xE9.jpg"); // Latin-1
    folder.write(longest + ".jpg");
    folder.write("new\nline.jpg");
    EXPECT_EQ(walked(folder.url()),
              (std::set<std::string>{"caf\xE9.jpg", longest + ".jpg", "new\nline.jpg"}));
}

TEST_F(LinuxFolderWalkTest, stopsAtTheEntryThatTheVisitorNames) {
    for (int i = 0; i < 50; ++i) folder.write("sub" + std::to_string(i % 5) + "/" + std::to_string(i));
    Collector collector{17};
    EXPECT_TRUE(files.walk(folder.url(), collector));
    EXPECT_EQ(collector.entries, 17U);
}

TEST_F(LinuxFolderWalkTest, failsOnlyWhereTheFolderItselfCannotBeRead) {
    Collector collector;
    EXPECT_EQ(files.walk(folder.at("none"), collector).error().code, std::errc::no_such_file_or_directory);
    EXPECT_EQ(files.walk(folder.write("file"), collector).error().code, std::errc::not_a_directory);
}

TEST_F(LinuxFolderWalkTest, passesOverASubfolderThatMayNotBeRead) {
    folder.write("closed/a.jpg");
    folder.write("open/b.jpg");
    ASSERT_EQ(::chmod(folder.at("closed").path().c_str(), 0), 0);
    ASSERT_EQ(::chmod(folder.url().path().c_str(), 0755), 0);
    const auto child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) { // root may read everything, so nobody looks
        if (::geteuid() == 0 && ::setuid(65534) != 0) ::_exit(77);
        ::_exit(walked(folder.url()) == std::set<std::string>{"closed", "open", "open/b.jpg"} ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ::chmod(folder.at("closed").path().c_str(), 0755);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == 77) GTEST_SKIP() << "can't become another user here";
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

} // namespace
} // namespace kelvara
