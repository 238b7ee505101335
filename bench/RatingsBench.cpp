// Reading the ratings of 5,000 sidecars against reading their bytes, which nothing that reads them can beat.

#include "bench/Compare.h"
#include "bench/Sidecars.h"
#include "platform/linux/LinuxFileSystem.h"
#include "services/XMPService.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

using namespace kelvara;

namespace {

constexpr std::size_t sidecarCount = 5000;

std::size_t readBytes(const std::vector<FileURL>& sidecars) {
    std::size_t sum = 0;
    std::string bytes;
    for (const auto& sidecar : sidecars) {
        const int file = ::open(sidecar.path().c_str(), O_RDONLY | O_CLOEXEC);
        struct stat values {};
        ::fstat(file, &values);
        bytes.resize(static_cast<std::size_t>(values.st_size));
        const auto count = ::read(file, bytes.data(), bytes.size());
        ::close(file);
        sum += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    return sum;
}

} // namespace

int main() {
    auto name = (std::filesystem::temp_directory_path() / "kelvara-ratings-bench-XXXXXX").string();
    const FileURL top{::mkdtemp(name.data())};
    std::vector<FileURL> sidecars;
    for (std::size_t i = 0; i < sidecarCount; ++i) {
        sidecars.push_back(top.child("DSC_" + std::to_string(10'000 + i) + ".xmp"));
        std::ofstream{sidecars.back().path()} << bench::sidecarText(i);
    }
    LinuxFileSystem files;
    const XMPService service{files};
    std::size_t found = 0;
    std::size_t bytes = 0;
    const auto readRatings = [&] { found = service.readRatings(sidecars).size(); };
    bench::compare("ratings of 5,000 sidecars", 31, sidecarCount, "sidecars", readRatings,
                   "their bytes, one thread", [&] { bytes = readBytes(sidecars); });
    const auto cat = "cat " + top.path() + "/*.xmp >/dev/null";
    bench::compare("ratings of 5,000 sidecars", 31, sidecarCount, "sidecars", readRatings, "cat",
                   [&] { static_cast<void>(!std::system(cat.c_str())); });
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < sidecarCount; ++i) texts.push_back(bench::sidecarText(i));
    bench::report("finding the rating in memory, one thread", 11, [&] {
        for (const auto& text : texts) found += XMPService::rating(text).has_value();
    });
    std::printf("ratings found: %zu, bytes a sidecar: %zu\n", service.readRatings(sidecars).size(),
                bytes / sidecarCount);
    std::filesystem::remove_all(top.path());
}
