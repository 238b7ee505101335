#include "platform/linux/LinuxFolderWatch.h"

#include "support/TemporaryFolder.h"
#include "support/WaitingExecutor.h"

#include <gtest/gtest.h>

namespace kelvara {

TEST(LinuxFolderWatchTest, whoLooksWhenToldHasSeenEveryChange) {
    const TemporaryFolder folder;
    WaitingExecutor main;
    LinuxFolderWatch watch{main, std::chrono::milliseconds{5}};
    using Files = std::vector<std::string>;
    Files seen{"not looked yet"};
    const auto root = folder / "watched";
    const auto look = [&] { seen = TemporaryFolder::exists(root) ? folder.files("watched") : Files{}; };
    // A change that is not told of lets this wait until the test's time is over.
    const auto waitFor = [&](const Files& expected) {
        while (seen != expected) main.runOne();
    };
    watch.watch(root, look);
    waitFor({}); // it is not there, which is told, too
    folder.write("watched/a", "1");
    waitFor({"a"});
    folder.write("watched/deep/er/b");
    waitFor({"a", "deep/er/b"});
    folder.write("watched/deep/er/c");
    waitFor({"a", "deep/er/b", "deep/er/c"});
    std::filesystem::rename((root.child("deep")).path(), (root.child("moved")).path());
    waitFor({"a", "moved/er/b", "moved/er/c"});
    std::filesystem::remove(root.child("moved/er/b").path());
    waitFor({"a", "moved/er/c"});
    std::filesystem::rename(root.path(), (folder / "elsewhere").path());
    waitFor({});
    std::filesystem::rename((folder / "elsewhere").path(), root.path());
    waitFor({"a", "moved/er/c"});

    std::string text;
    watch.watch(root, [&] { text = TemporaryFolder::read(root.child("a")); });
    folder.write("watched/a", "2");
    while (text != "2") main.runOne();
    watch.watch(folder / "no/such/folder", [&] { text = "told"; });
    while (text != "told") main.runOne();
}

} // namespace kelvara
