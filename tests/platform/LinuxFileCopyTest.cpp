#include "platform/linux/LinuxFileSystem.h"
#include "support/TemporaryFolder.h"

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <thread>
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

using Copying = Result<std::unique_ptr<PendingCopy>, FileError>;

class LinuxFileCopyTest : public testing::Test {
protected:
    /// Under a temporary name, "to.partial".
    Copying begin(const FileURL& from, const FileURL& to, CopyReading reading = CopyReading::none) {
        return files.copyFile(from, to.appendingExtension("partial"), reading, {});
    }
    /// The whole way; gives what the medium then holds, or the reason why there is no copy.
    std::string copied(const FileURL& from, const FileURL& to, CopyReading reading = CopyReading::none) {
        const auto copy = begin(from, to, reading);
        if (!copy) return copy.error().code.message();
        if (!(*copy)->sync()) return "not synced";
        if (reading == CopyReading::hashed && !(*copy)->isIntact().value()) return "not intact";
        if (!(*copy)->place(to)) return "not placed";
        return TemporaryFolder::read(to);
    }

    TemporaryFolder folder;
    LinuxFileSystem files;
};

constexpr auto readings = {CopyReading::none, CopyReading::hashed};

TEST_F(LinuxFileCopyTest, copiesEveryByteTimeModeAndTag) {
    // Around the sizes at which another way is taken, and with a last block of every kind.
    for (const std::size_t size : {0U, 1U, 4096U, 300'000U, 4'194'303U, 4'194'304U, 4'198'400U, 9'000'001U}) {
        const auto bytes = variedBytes(size);
        const auto from = folder.write("a.NEF", bytes);
        const bool hasTags = ::setxattr(from.path().c_str(), "user.tag", "red", 3, 0) == 0;
        ASSERT_EQ(::chmod(from.path().c_str(), 0444), 0);
        const struct timespec times[2] = {{0, UTIME_OMIT}, {1'700'000'000, 123'000'000}};
        ASSERT_EQ(::utimensat(AT_FDCWD, from.path().c_str(), times, 0), 0);
        for (const auto reading : readings) {
            const auto to = folder.at("b.NEF");
            ASSERT_TRUE(copied(from, to, reading) == bytes) << size;
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
            EXPECT_TRUE(files.removeFile(to));
        }
        EXPECT_EQ(folder.files(), std::vector<std::string>{"a.NEF"});
        EXPECT_TRUE(files.removeFile(from));
    }
}

TEST_F(LinuxFileCopyTest, copiesToAnotherVolume) {
    const std::filesystem::path memory{"/dev/shm"};
    if (::access(memory.c_str(), W_OK) != 0) GTEST_SKIP() << "no second volume to write to";
    const TemporaryFolder other{memory};
    const auto bytes = variedBytes(5'000'000);
    const auto from = folder.write("a", bytes);
    EXPECT_TRUE(copied(from, other.at("a"), CopyReading::none) == bytes);
    EXPECT_TRUE(copied(from, other.at("b"), CopyReading::hashed) == bytes);
    EXPECT_TRUE(files.haveSameContents(from, other.at("b"), {}).value());
    const auto moved = files.moveFile(from, other.at("moved"));
    ASSERT_FALSE(moved);
    EXPECT_EQ(moved.error().code, std::errc::cross_device_link);
}

TEST_F(LinuxFileCopyTest, seesAByteThatChangedAfterItWasWritten) {
    for (const std::size_t size : {1U, 100'000U, 5'000'001U}) {
        for (const std::size_t at : {std::size_t{0}, size / 2, size - 1}) {
            auto bytes = variedBytes(size);
            const auto from = folder.write("a", bytes);
            const auto copy = begin(from, folder.at("b"), CopyReading::hashed);
            ASSERT_TRUE(copy && (*copy)->sync());
            EXPECT_TRUE((*copy)->isIntact().value());
            bytes[at] = static_cast<char>(bytes[at] ^ 1);
            std::fstream{folder.at("b.partial").path()}.seekp(static_cast<std::streamoff>(at)).put(bytes[at]);
            EXPECT_FALSE((*copy)->isIntact().value()) << size << " " << at;
            EXPECT_FALSE(files.haveSameContents(from, folder.write("c", bytes), {}).value());
            EXPECT_TRUE(files.haveSameContents(folder.at("b.partial"), folder.at("c"), {}).value());
        }
    }
    EXPECT_EQ(files.haveSameContents(folder.at("a"), folder.at("none"), {}).error().url, folder.at("none"));
    std::stop_source stop;
    stop.request_stop();
    EXPECT_TRUE(
        files.haveSameContents(folder.at("a"), folder.at("a"), stop.get_token()).error().wasCancelled());
}

TEST_F(LinuxFileCopyTest, theTemporaryFileBelongsToOneLivingCopy) {
    const auto from = folder.write("from", "new");
    const auto to = folder.at("to");
    folder.write("to.partial", "left by a copy that was killed");
    {
        const auto first = begin(from, to);
        ASSERT_TRUE(first);
        EXPECT_EQ(begin(from, to).error().code, std::errc::device_or_resource_busy);
        EXPECT_EQ(TemporaryFolder::read(folder.at("to.partial")), "new");
        folder.write("to", "theirs");
        EXPECT_EQ((*first)->place(to).error().code, std::errc::file_exists);
    }
    EXPECT_EQ(TemporaryFolder::read(to), "theirs");
    EXPECT_EQ(folder.files(), (std::vector<std::string>{"from", "to"}));

    { // taken for abandoned where there are no locks
        const auto first = begin(from, folder.at("torn"));
        std::filesystem::remove(folder.at("torn.partial").path());
        folder.write("torn.partial", "ne");
        EXPECT_EQ((*first)->place(folder.at("torn")).error().code, std::errc::device_or_resource_busy);
    }
    EXPECT_EQ(folder.files(), (std::vector<std::string>{"from", "to", "torn.partial"}));

    ASSERT_EQ(::symlink("victim", folder.at("link.partial").path().c_str()), 0);
    EXPECT_EQ(copied(from, folder.at("link")), "new");
    EXPECT_EQ(folder.files(), (std::vector<std::string>{"from", "link", "to", "torn.partial"}));
    const auto in = folder.makeFolder("folder.partial");
    EXPECT_EQ(begin(from, folder.at("folder")).error(),
              (FileError{in, std::make_error_code(std::errc::file_exists)}));
}

TEST_F(LinuxFileCopyTest, oneOfManyThatCopyToOnePlaceWins) {
    const auto from = folder.write("from", variedBytes(100'000));
    std::atomic<int> placed = 0;
    std::vector<std::jthread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 200; ++round) {
                const auto copy = begin(from, folder.at("to"));
                if (!copy) continue;
                EXPECT_EQ((*copy)->size().value(), 100'000);
                if ((*copy)->place(folder.at("to"))) ++placed;
            }
        });
    }
    threads.clear();
    EXPECT_EQ(placed, 1);
    EXPECT_EQ(folder.files(), (std::vector<std::string>{"from", "to"}));
    EXPECT_TRUE(TemporaryFolder::read(folder.at("to")) == variedBytes(100'000));
}

TEST_F(LinuxFileCopyTest, refusesWhatIsNoFile) {
    ASSERT_EQ(::mkfifo(folder.at("pipe.NEF").path().c_str(), 0600), 0);
    folder.write("real.NEF", "x");
    ASSERT_EQ(::symlink("real.NEF", folder.at("link.NEF").path().c_str()), 0);
    folder.makeFolder("folder.NEF");
    for (const auto* name : {"pipe.NEF", "link.NEF", "folder.NEF", "none.NEF"}) {
        const auto copy = begin(folder.at(name), folder.at("to"));
        ASSERT_FALSE(copy) << name;
        EXPECT_EQ(copy.error().url, folder.at(name));
        EXPECT_FALSE(TemporaryFolder::exists(folder.at("to.partial"))) << name;
    }
}

TEST_F(LinuxFileCopyTest, stopsWhenAsked) {
    std::stop_source stop;
    stop.request_stop();
    const auto from = folder.write("a", "bytes");
    for (const auto reading : readings) {
        const auto copy = files.copyFile(from, folder.at("b"), reading, stop.get_token());
        ASSERT_FALSE(copy);
        EXPECT_TRUE(copy.error().wasCancelled());
        EXPECT_FALSE(TemporaryFolder::exists(folder.at("b")));
    }
}

TEST_F(LinuxFileCopyTest, reportsAWriteThatTheSystemRefuses) {
    for (const std::size_t size : {200'000U, 6'000'000U}) {
        const auto from = folder.write("a", variedBytes(size));
        auto* const handler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit before{};
        ::getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limited{size / 2 + 1000, before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limited);
        const auto copy = begin(from, folder.at("b"));
        ::setrlimit(RLIMIT_FSIZE, &before);
        (void)std::signal(SIGXFSZ, handler);
        ASSERT_FALSE(copy);
        EXPECT_EQ(copy.error().code, std::errc::file_too_large);
        EXPECT_EQ(copy.error().url, folder.at("b.partial"));
        EXPECT_FALSE(TemporaryFolder::exists(folder.at("b.partial")));
    }
}

/// Runs in a process of its own, which alone sees the small volume. 0: as expected; 77: not permitted here.
int copyOntoAFullVolume(const FileURL& from, const FileURL& mountPoint) {
    if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("tmpfs", mountPoint.path().c_str(), "tmpfs", 0, "size=1m") != 0) {
        return 77;
    }
    LinuxFileSystem files;
    const auto to = mountPoint.child("b");
    for (const auto reading : readings) {
        const auto copy = files.copyFile(from, to, reading, {});
        if (copy || copy.error().code != std::errc::no_space_on_device || copy.error().url != to) return 1;
        if (files.status(to)) return 2;
    }
    const auto kept = mountPoint.child("kept.xmp");
    if (!files.writeFileAtomically(kept, "old")) return 3;
    const auto written = files.writeFileAtomically(kept, std::string(2'000'000, 'x'));
    if (written || written.error().code != std::errc::no_space_on_device) return 4;
    return files.readFile(kept, 100).value() == "old" ? 0 : 5;
}

TEST_F(LinuxFileCopyTest, reportsAFullVolume) {
    const auto mountPoint = folder.makeFolder("volume");
    for (const std::size_t size : {3'000'000U, 5'000'000U}) {
        const auto from = folder.write("a", variedBytes(size));
        const auto child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) ::_exit(copyOntoAFullVolume(from, mountPoint));
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status));
        if (WEXITSTATUS(status) == 77) GTEST_SKIP() << "this user may not mount a small volume";
        EXPECT_EQ(WEXITSTATUS(status), 0);
    }
}

} // namespace
} // namespace kelvara
