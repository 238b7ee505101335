// A camera JPEG in full resolution, ready for the screen, against djpeg and against the same library in this
// process. The screen is sRGB as the photos are, so that nothing is converted.

#include "bench/Compare.h"
#include "bench/Photos.h"
#include "bench/PlainJpeg.h"
#include "services/PreviewService.h"

using namespace kelvara;

int main() {
    const auto files = bench::photos(bench::PhotoKind::jpeg, 12);
    const auto count = static_cast<double>(files.size());
    const auto decode = PreviewService::decodingOfFiles();
    const auto ours = [&] { bench::onBothCores(files, [&](const FileURL& url) { decode(url, {}); }); };
    constexpr bench::Terms atMost15PercentMore{bench::Clock::processor, 1 / 1.15};
    if (bench::runOnBothCores({"djpeg", "-version"}, {}))
        bench::compare(
            "full resolution", 5, count, "images", ours, "djpeg",
            [&] {
                bench::onBothCores(files, [&](const FileURL& url) {
                    bench::runOnBothCores({"djpeg", "-pnm", "-outfile", "/dev/null"}, {url});
                });
            },
            atMost15PercentMore);
    bench::compare(
        "full resolution", 5, count, "images", ours, "libjpeg",
        [&] { bench::onBothCores(files, [](const FileURL& url) { bench::decodePlainly(url.path()); }); },
        atMost15PercentMore);
}
