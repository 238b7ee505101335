// The folder scan against the least that a walk can do, on a tree of 100,000 files with 20,000 media files.

#include "bench/Compare.h"
#include "bench/MinimalWalk.h"
#include "platform/linux/LinuxFileSystem.h"
#include "services/FileScanner.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

using namespace kelvara;

namespace {

constexpr int folders = 200;
constexpr int filesAFolder = 500;

void makeTree(const std::filesystem::path& top) {
    for (int folder = 0; folder < folders; ++folder) {
        const auto path = top / "DCIM" / (std::to_string(100 + folder) + "KELVA");
        std::filesystem::create_directories(path);
        for (int file = 0; file < filesAFolder; ++file) {
            const char* extension = file % 5 != 0 ? ".xml" : file % 10 == 0 ? ".NEF" : ".JPG";
            std::ofstream{path / ("DSC_" + std::to_string(10'000 + file) + extension)};
        }
    }
}

/// The scanner's share of the work without the order it puts the result in.
class Counter : public FolderWalkVisitor {
public:
    Answer met(std::string_view name) override {
        const auto dot = name.rfind('.');
        return dot != std::string_view::npos && mediaKind(name.substr(dot + 1)) ? Answer::describe
                                                                                : Answer::pass;
    }
    void described(std::string_view folder, std::string_view name, const FileStatus& status) override {
        std::string path;
        path.reserve(folder.size() + 1 + name.size());
        path.append(folder).append(1, '/').append(name);
        items.push_back({FileURL{std::move(path)}, status.size, status.creationDate});
    }
    std::vector<PhotoItem> items;
};

} // namespace

int main() {
    auto name = (std::filesystem::temp_directory_path() / "kelvara-scan-bench-XXXXXX").string();
    const FileURL top{::mkdtemp(name.data())};
    makeTree(top.path());
    const LinuxFileSystem files;
    std::size_t found = 0;
    const auto limit = [&] {
        found = static_cast<std::size_t>(bench::minimalWalk(top.path().c_str()).mediaFiles);
    };
    bench::compare(
        "walk, 100,000 files, items made", 31, folders * filesAFolder, "entries",
        [&] {
            Counter counter;
            static_cast<void>(files.walk(top, counter));
            found = counter.items.size();
        },
        "getdents64+statx", limit);
    bench::compare(
        "scan, 100,000 files, 20,000 items in order", 31, folders * filesAFolder, "entries",
        [&] { found = FileScanner{files}.collect(top, {})->size(); }, "getdents64+statx", limit);
    std::printf("media files found: %zu\n", found);
    std::filesystem::remove_all(top.path());
}
