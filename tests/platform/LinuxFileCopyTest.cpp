#include "platform/linux/LinuxFileSystem.h"
#include "support/TemporaryFolder.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace kelvara {
namespace {

/// No two stretches of it are alike, so that a stretch left out or copied twice shows.
std::string variedBytes(std::size_t size) {
    std::string bytes(size, '\0');
    std::uint32_t state = 1;
    for (auto& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24U);
    }
    return bytes;
}

class LinuxFileCopyTest : public testing::Test {
protected:
    TemporaryFolder folder;
    LinuxFileSystem files;
};

TEST_F(LinuxFileCopyTest, copiesEveryByteTimeModeAndTag) {
    const auto bytes = variedBytes(9'000'001);
    const auto from = folder.write("a.NEF", bytes);
    const bool hasTags = ::setxattr(from.path().c_str(), "user.tag", "red", 3, 0) == 0;
    ASSERT_EQ(::chmod(from.path().c_str(), 0444), 0);
    const struct timespec times[2] = {{0, UTIME_OMIT}, {1'700'000'000, 123'000'000}};
    ASSERT_EQ(::utimensat(AT_FDCWD, from.path().c_str(), times, 0), 0);

    const auto to = folder.at("b.NEF");
    ASSERT_TRUE(files.copyFile(from, to, {}));
    EXPECT_TRUE(TemporaryFolder::read(to) == bytes);
    struct stat values {};
    ASSERT_EQ(::stat(to.path().c_str(), &values), 0);
    EXPECT_EQ(values.st_mode & 07777, 0444U);
    EXPECT_EQ(values.st_mtim.tv_sec, 1'700'000'000);
    EXPECT_EQ(values.st_mtim.tv_nsec, 123'000'000);
    if (hasTags) {
        char tag[4]{};
        EXPECT_EQ(::getxattr(to.path().c_str(), "user.tag", tag, sizeof tag), 3);
        EXPECT_STREQ(tag, "red");
    }
}

TEST_F(LinuxFileCopyTest, copiesEmptyFiles) {
    ASSERT_TRUE(files.copyFile(folder.write("a"), folder.at("b"), {}));
    EXPECT_EQ(files.status(folder.at("b"))->size, 0);
}

TEST_F(LinuxFileCopyTest, copiesToAnotherVolume) {
    const std::filesystem::path memory{"/dev/shm"};
    if (::access(memory.c_str(), W_OK) != 0) GTEST_SKIP() << "no second volume to write to";
    const TemporaryFolder other{memory};
    const auto bytes = variedBytes(5'000'000);
    ASSERT_TRUE(files.copyFile(folder.write("a", bytes), other.at("a"), {}));
    EXPECT_TRUE(TemporaryFolder::read(other.at("a")) == bytes);
    const auto moved = files.moveFile(folder.at("a"), other.at("moved"));
    ASSERT_FALSE(moved);
    EXPECT_EQ(moved.error().code, std::errc::cross_device_link);
}

TEST_F(LinuxFileCopyTest, neverWritesIntoWhatIsThere) {
    const auto from = folder.write("from", "new");
    const auto taken = folder.write("taken", "old");
    const auto copied = files.copyFile(from, taken, {});
    ASSERT_FALSE(copied);
    EXPECT_EQ(copied.error().code, std::errc::file_exists);
    EXPECT_EQ(copied.error().url, taken);
    EXPECT_EQ(TemporaryFolder::read(taken), "old");
    ASSERT_EQ(::symlink("victim", folder.at("link").path().c_str()), 0);
    EXPECT_FALSE(files.copyFile(from, folder.at("link"), {}));
    EXPECT_FALSE(TemporaryFolder::exists(folder.at("victim")));
}

TEST_F(LinuxFileCopyTest, refusesWhatIsNoFile) {
    ASSERT_EQ(::mkfifo(folder.at("pipe.NEF").path().c_str(), 0600), 0);
    folder.write("real.NEF", "x");
    ASSERT_EQ(::symlink("real.NEF", folder.at("link.NEF").path().c_str()), 0);
    folder.makeFolder("folder.NEF");
    for (const auto* name : {"pipe.NEF", "link.NEF", "folder.NEF", "none.NEF"}) {
        const auto copied = files.copyFile(folder.at(name), folder.at("to"), {});
        ASSERT_FALSE(copied) << name;
        EXPECT_EQ(copied.error().url, folder.at(name));
        EXPECT_FALSE(TemporaryFolder::exists(folder.at("to"))) << name;
    }
}

TEST_F(LinuxFileCopyTest, stopsWhenAsked) {
    std::stop_source stop;
    stop.request_stop();
    const auto copied = files.copyFile(folder.write("a", "bytes"), folder.at("b"), stop.get_token());
    ASSERT_FALSE(copied);
    EXPECT_TRUE(copied.error().wasCancelled());
}

TEST_F(LinuxFileCopyTest, reportsAWriteThatTheSystemRefuses) {
    const auto from = folder.write("a", variedBytes(200'000));
    auto* const handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limited{100'000, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limited);
    const auto copied = files.copyFile(from, folder.at("b"), {});
    ::setrlimit(RLIMIT_FSIZE, &before);
    (void)std::signal(SIGXFSZ, handler);
    ASSERT_FALSE(copied);
    EXPECT_EQ(copied.error().code, std::errc::file_too_large);
    EXPECT_EQ(copied.error().url, folder.at("b"));
}

/// Runs in a process of its own, which alone sees the small volume. 0: as expected; 77: not permitted here.
int copyOntoAFullVolume(const FileURL& from, const FileURL& mountPoint) {
    if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("tmpfs", mountPoint.path().c_str(), "tmpfs", 0, "size=1m") != 0) {
        return 77;
    }
    LinuxFileSystem files;
    const auto to = mountPoint.child("b");
    const auto copied = files.copyFile(from, to, {});
    if (copied || copied.error().code != std::errc::no_space_on_device || copied.error().url != to) return 1;
    const auto kept = mountPoint.child("kept.xmp");
    if (files.writeFileAtomically(kept, "x").hasValue()) return 2; // full to the last page
    if (!files.removeFile(to) || !files.writeFileAtomically(kept, "old")) return 3;
    const auto written = files.writeFileAtomically(kept, std::string(2'000'000, 'x'));
    if (written || written.error().code != std::errc::no_space_on_device) return 4;
    return files.readFile(kept, 100).value() == "old" ? 0 : 5;
}

TEST_F(LinuxFileCopyTest, reportsAFullVolume) {
    const auto from = folder.write("a", variedBytes(3'000'000));
    const auto mountPoint = folder.makeFolder("volume");
    const auto child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) ::_exit(copyOntoAFullVolume(from, mountPoint));
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == 77) GTEST_SKIP() << "this user may not mount a small volume";
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

} // namespace
} // namespace kelvara
