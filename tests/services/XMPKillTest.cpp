// A process that is killed while it rates leaves the old sidecar or the new one, never half of one.

#include "platform/linux/LinuxFileSystem.h"
#include "services/XMPService.h"
#include "support/TemporaryFolder.h"

#include <csignal>
#include <gtest/gtest.h>
#include <random>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace kelvara {
namespace {

constexpr int kills = 30;

/// Rates in a loop until it is killed, and says so after each rating.
[[noreturn]] void rateForEver(const FileURL& sidecar, int progress) {
    LinuxFileSystem files;
    XMPService service{files};
    for (int i = 0;; ++i) {
        if (!service.setRating(*Rating::fromRawValue(i % 6), sidecar)) ::_exit(1);
        if (::write(progress, "x", 1) != 1) ::_exit(1);
    }
}

TEST(XMPKillTest, aKilledProcessLeavesAWholeSidecar) {
    const TemporaryFolder folder;
    const auto existing = folder.at("a.xmp");
    const auto created = folder.at("b.xmp");
    // Large enough that writing it takes a while.
    const auto keywords = "<note>" + std::string(100'000, 'k') + "</note>";
    folder.write("a.xmp", "<r:RDF xmlns:r='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><r:Description>" +
                              keywords + "</r:Description></r:RDF>");
    std::mt19937 random{7};
    for (int i = 0; i < kills; ++i) {
        const auto& sidecar = i % 4 == 3 ? created : existing;
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        const auto child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) rateForEver(sidecar, ends[1]);
        ::close(ends[1]);
        // Some ratings later, at any point of the next one. The first of a new sidecar is not waited for.
        char one = 0;
        const auto ratings = sidecar == created ? 0U : random() % 3;
        for (unsigned rating = 0; rating < ratings; ++rating) ASSERT_EQ(::read(ends[0], &one, 1), 1);
        for (auto turns = random() % 200; turns > 0; --turns) std::this_thread::yield();
        ::kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status)) << "the child ended by itself";
        ::close(ends[0]);

        const auto bytes = TemporaryFolder::read(existing);
        EXPECT_NE(bytes.find(keywords), std::string::npos);
        EXPECT_TRUE(bytes.ends_with("</r:RDF>"));
        if (TemporaryFolder::exists(created)) {
            EXPECT_TRUE(XMPService::rating(TemporaryFolder::read(created)));
            ASSERT_EQ(::unlink(created.path().c_str()), 0);
        }
    }
    EXPECT_TRUE(XMPService::rating(TemporaryFolder::read(existing)));

    // What was in progress is hidden, so that no scan takes it for anything, and stops nobody.
    for (const auto& name : folder.files()) {
        EXPECT_TRUE(name == "a.xmp" || name.starts_with(".kelvara-")) << name;
    }
    LinuxFileSystem files;
    EXPECT_TRUE(XMPService{files}.setRating(*Rating::fromRawValue(5), existing));
    EXPECT_EQ(XMPService::rating(TemporaryFolder::read(existing)), Rating::fromRawValue(5));
}

} // namespace
} // namespace kelvara
