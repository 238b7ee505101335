// Thumbnails of camera JPEGs on both cores against vipsthumbnail and against the least that the JPEG library
// can do. Times are processor times, so that a row's pictures a second are those of one core.

#include "bench/Compare.h"
#include "bench/Photos.h"
#include "bench/PlainJpeg.h"
#include "imaging/ImageDecoder.h"
#include "services/ThumbnailService.h"

using namespace kelvara;

namespace {

constexpr bench::Clock processor = bench::Clock::processor;

void compareJpegs(const std::vector<FileURL>& files) {
    const auto decoding = ThumbnailService::Decoding::ofFiles();
    const auto count = static_cast<double>(files.size());
    struct Size {
        int side;
        double leastAgainstVips;
    };
    for (const auto& [side, leastAgainstVips] : {Size{256, 1.2}, Size{512, 1.4}, Size{1024, 1.55}}) {
        const auto ours = [&, wanted = side] {
            bench::onBothCores(files, [&](const FileURL& url) {
                if (!decoding.thumbnail(url, wanted, {})) std::printf("%s failed\n", url.path().c_str());
            });
        };
        const auto title = "thumbnails of " + std::to_string(side) + " pixels";
        const auto folder = std::filesystem::temp_directory_path() / "kelvara-vips-thumbnails";
        std::filesystem::create_directories(folder);
        const std::vector<std::string> vips{"vipsthumbnail", "--size", std::to_string(side), "-o",
                                            (folder / "%s.ppm").string()};
        const bool hasVips = bench::runOnBothCores({"vipsthumbnail", "--version"}, {});
        if (hasVips)
            bench::compare(title, 5, count, "images", ours, "vipsthumbnail",
                           [&] { static_cast<void>(bench::runOnBothCores(vips, files)); },
                           {processor, leastAgainstVips});
        bench::compare(title, 5, count, "images", ours, "libjpeg+box",
                       [&, wanted = side] {
                           bench::onBothCores(
                               files, [&](const FileURL& url) { bench::decodePlainly(url.path(), wanted); });
                       },
                       {processor, 0.95});
        std::filesystem::remove_all(folder);
    }
}

void compareStoredPreviews(const std::vector<FileURL>& files) {
    const auto decoding = ThumbnailService::Decoding::ofFiles();
    const auto perImage = [&](int repeats, auto&& decode) {
        std::vector<double> times;
        for (int round = 0; round < 5; ++round)
            times.push_back(bench::seconds(
                [&] {
                    for (int i = 0; i < repeats; ++i)
                        for (const auto& url : files) decode(url);
                },
                processor));
        return bench::median(times) / repeats / static_cast<double>(files.size());
    };
    const auto whole = perImage(1, [&](const FileURL& url) { decoding.thumbnail(url, 512, {}); });
    const auto quick = perImage(50, [&](const FileURL& url) {
        if (!decoding.quickThumbnail(url, {})) std::printf("%s has no preview\n", url.path().c_str());
    });
    std::printf("%-44s %9.3f ms   thumbnail of 512 pixels %9.2f ms   speed ratio %.0f, wanted 100\n",
                "quick thumbnail from the stored preview", quick * 1000, whole * 1000, whole / quick);
}

/// The same picture in ten scans, of which small sizes need only the first few.
void measureProgressive(const FileURL& baseline) {
    const auto path = std::filesystem::temp_directory_path() / "kelvara-progressive-bench.jpg";
    if (!bench::runOnBothCores({"jpegtran", "-copy", "all", "-progressive", "-outfile", path.string()},
                               {baseline}))
        return static_cast<void>(std::puts("no jpegtran: nothing said about progressive files"));
    const FileURL url{path.string()};
    const auto size = static_cast<double>(std::filesystem::file_size(path));
    const auto decoding = ThumbnailService::Decoding::ofFiles();
    for (const int side : {256, 512, 1024, 6000}) {
        const auto before = bench::bytesRead();
        const auto time = bench::seconds([&] { decoding.thumbnail(url, side, {}); }, processor);
        std::printf("progressive, %-31d %9.2f ms   %.0f %% of %.1f MB read\n", side, time * 1000,
                    100 * static_cast<double>(bench::bytesRead() - before) / size, size / 1e6);
    }
    std::filesystem::remove(path);
}

} // namespace

int main() {
    const auto files = bench::photos(bench::PhotoKind::jpeg, 12);
    compareJpegs(files);
    compareStoredPreviews({files.begin(), files.begin() + 6});
    measureProgressive(files.front());
}
