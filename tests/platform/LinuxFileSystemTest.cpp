#include "platform/linux/LinuxFileSystem.h"

#include "platform/linux/FileWriting.h"
#include "support/TemporaryFolder.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace kelvara {
namespace {

using Kind = FileStatus::Kind;

struct stat statusOf(const FileURL& url) {
    struct stat values {};
    EXPECT_EQ(::stat(url.path().c_str(), &values), 0) << url.path();
    return values;
}

/// Lets no file grow beyond a size while it lives, which is what a full disk looks like to a writer.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : m_handler{std::signal(SIGXFSZ, SIG_IGN)} {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limited{bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        (void)std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    void (*m_handler)(int);
    rlimit m_before{};
};

class LinuxFileSystemTest : public testing::Test {
protected:
    TemporaryFolder folder;
    LinuxFileSystem files;
};

TEST_F(LinuxFileSystemTest, statusTellsFilesFoldersAndLinksApart) {
    const auto file = folder.write("a.jpg", "12345");
    ASSERT_EQ(::symlink("a.jpg", folder.at("link.jpg").path().c_str()), 0);
    const struct timespec times[2] = {{0, UTIME_OMIT}, {1'000'000, 500'000'000}};
    ASSERT_EQ(::utimensat(AT_FDCWD, file.path().c_str(), times, 0), 0);

    const auto status = files.status(file);
    ASSERT_TRUE(status);
    EXPECT_EQ(status->kind, Kind::file);
    EXPECT_EQ(status->size, 5);
    // Born just now, but written long ago: the older one is the capture.
    EXPECT_EQ(status->creationDate, FileTime{std::chrono::milliseconds{1'000'000'500}});
    EXPECT_EQ(files.status(folder.url())->kind, Kind::folder);
    EXPECT_EQ(files.status(folder.at("link.jpg"))->kind, Kind::other);
    EXPECT_EQ(files.status(folder.at("none")).error().code, std::errc::no_such_file_or_directory);
}

TEST_F(LinuxFileSystemTest, readsWholeFilesUpToALimit) {
    const auto file = folder.write("a.xmp", std::string("a\0b", 3));
    EXPECT_EQ(files.readFile(file, 3).value(), std::string("a\0b", 3));
    EXPECT_EQ(files.readFile(file, 2).error().code, std::errc::file_too_large);
    EXPECT_EQ(files.readFile(folder.url(), 100).error().code, std::errc::is_a_directory);
    ASSERT_EQ(::mkfifo(folder.at("pipe").path().c_str(), 0600), 0);
    EXPECT_FALSE(files.readFile(folder.at("pipe"), 100)); // and does not wait for a writer
}

TEST_F(LinuxFileSystemTest, writesNewFilesWithTheUsualModeAndLeavesNothingBeside) {
    const auto before = ::umask(027);
    EXPECT_TRUE(files.writeFileAtomically(folder.at("a.xmp"), "new"));
    ::umask(before);
    EXPECT_EQ(TemporaryFolder::read(folder.at("a.xmp")), "new");
    EXPECT_EQ(statusOf(folder.at("a.xmp")).st_mode & 07777, 0640U);
    EXPECT_EQ(folder.files(), std::vector<std::string>{"a.xmp"});
}

TEST_F(LinuxFileSystemTest, aRewrittenFileKeepsModeAndOwnerAndIsReplacedWhole) {
    const auto file = folder.write("a.xmp", "old and longer");
    ASSERT_EQ(::chmod(file.path().c_str(), 0604), 0);
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(file.path().c_str(), 1234, 5678), 0);
    }
    const auto old = statusOf(file);
    EXPECT_TRUE(files.writeFileAtomically(file, "new"));
    const auto now = statusOf(file);
    EXPECT_EQ(TemporaryFolder::read(file), "new");
    EXPECT_EQ(now.st_mode, old.st_mode);
    EXPECT_EQ(now.st_uid, old.st_uid);
    EXPECT_EQ(now.st_gid, old.st_gid);
    EXPECT_NE(now.st_ino, old.st_ino); // a reader of the old file goes on reading the old bytes
}

TEST_F(LinuxFileSystemTest, writingThroughALinkKeepsTheLink) {
    folder.write("real/a.xmp", "old");
    ASSERT_EQ(::symlink("real/a.xmp", folder.at("link.xmp").path().c_str()), 0);
    ASSERT_EQ(::symlink("link.xmp", folder.at("second.xmp").path().c_str()), 0);
    ASSERT_EQ(::symlink("real/b.xmp", folder.at("dangling.xmp").path().c_str()), 0);
    ASSERT_EQ(::symlink("loop.xmp", folder.at("loop.xmp").path().c_str()), 0);

    EXPECT_TRUE(files.writeFileAtomically(folder.at("second.xmp"), "new"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.at("second.xmp").path()));
    EXPECT_EQ(TemporaryFolder::read(folder.at("real/a.xmp")), "new");
    EXPECT_TRUE(files.writeFileAtomically(folder.at("dangling.xmp"), "made"));
    EXPECT_EQ(TemporaryFolder::read(folder.at("real/b.xmp")), "made");
    EXPECT_EQ(files.writeFileAtomically(folder.at("loop.xmp"), "x").error().code,
              std::errc::too_many_symbolic_link_levels);
}

TEST_F(LinuxFileSystemTest, aFailedWriteLeavesTheOldFileAlone) {
    const auto file = folder.write("a.xmp", "old");
    {
        const FileSizeLimit limit{1000};
        const auto written = files.writeFileAtomically(file, std::string(5000, 'x'));
        ASSERT_FALSE(written);
        EXPECT_EQ(written.error().code, std::errc::file_too_large);
        EXPECT_EQ(written.error().url, file);
    }
    EXPECT_EQ(TemporaryFolder::read(file), "old");
    EXPECT_EQ(folder.files(), std::vector<std::string>{"a.xmp"});
    EXPECT_EQ(files.writeFileAtomically(folder.url(), "x").error().code, std::errc::is_a_directory);
    EXPECT_FALSE(files.writeFileAtomically(folder.at("none/a.xmp"), "x"));
}

TEST_F(LinuxFileSystemTest, createsFoldersAtAnyDepthOnce) {
    EXPECT_TRUE(files.createFolders(folder.at("a/b/c")));
    EXPECT_TRUE(files.createFolders(folder.at("a/b/c")));
    EXPECT_TRUE(std::filesystem::is_directory(folder.at("a/b/c").path()));
    folder.write("file");
    EXPECT_EQ(files.createFolders(folder.at("file")).error().code, std::errc::file_exists);
    EXPECT_FALSE(files.createFolders(folder.at("file/below")));
    ASSERT_EQ(::symlink("a", folder.at("link").path().c_str()), 0);
    EXPECT_TRUE(files.createFolders(folder.at("link/d")));
    EXPECT_TRUE(std::filesystem::is_directory(folder.at("a/d").path()));
}

TEST_F(LinuxFileSystemTest, noWayOfMovingReplacesAFile) {
    for (auto* const move : {&moveByExclusiveRename, &moveByLink, &moveByReservation}) {
        const auto from = folder.write("from", "moved");
        const auto taken = folder.write("taken", "kept");
        errno = 0;
        EXPECT_FALSE(move(from, taken));
        EXPECT_EQ(errno, EEXIST);
        EXPECT_EQ(TemporaryFolder::read(taken), "kept");
        EXPECT_TRUE(move(from, folder.at("free")));
        EXPECT_EQ(TemporaryFolder::read(folder.at("free")), "moved");
        EXPECT_FALSE(TemporaryFolder::exists(from));
        EXPECT_FALSE(move(from, folder.at("other")));
        EXPECT_EQ(errno, ENOENT);
        std::filesystem::remove(folder.at("free").path());
    }
}

TEST_F(LinuxFileSystemTest, moveTellsWhyItFailed) {
    const auto from = folder.write("from", "moved");
    ASSERT_EQ(::symlink("nowhere", folder.at("dangling").path().c_str()), 0);
    EXPECT_EQ(files.moveFile(from, folder.at("dangling")).error().code, std::errc::file_exists);
    EXPECT_EQ(files.moveFile(folder.at("none"), folder.at("x")).error().url, folder.at("none"));
    EXPECT_TRUE(files.moveFile(from, folder.at("to")));
    EXPECT_EQ(TemporaryFolder::read(folder.at("to")), "moved");
}

TEST_F(LinuxFileSystemTest, removesFilesAndLinksButNoFolders) {
    folder.write("a.jpg");
    ASSERT_EQ(::symlink("a.jpg", folder.at("link").path().c_str()), 0);
    EXPECT_TRUE(files.removeFile(folder.at("link")));
    EXPECT_TRUE(TemporaryFolder::exists(folder.at("a.jpg")));
    EXPECT_TRUE(files.removeFile(folder.at("a.jpg")));
    EXPECT_FALSE(files.removeFile(folder.at("a.jpg")));
    folder.makeFolder("sub");
    EXPECT_EQ(files.removeFile(folder.at("sub")).error().code, std::errc::is_a_directory);
}

TEST_F(LinuxFileSystemTest, knowsTheCapacityOfAVolume) {
    const auto space = std::filesystem::space(folder.url().path());
    const auto available = files.availableCapacity(folder.url());
    ASSERT_TRUE(available);
    // Others write to the disk meanwhile; a wrong unit would be off by a factor of hundreds.
    EXPECT_GT(static_cast<double>(*available), 0.5 * static_cast<double>(space.available));
    EXPECT_LT(static_cast<double>(*available), 2.0 * static_cast<double>(space.available));
    EXPECT_EQ(files.availableCapacity(folder.at("none")), std::nullopt);
    EXPECT_EQ(files.availableCapacity(FileURL{"/proc"}), std::nullopt); // has no size at all
}

} // namespace
} // namespace kelvara
