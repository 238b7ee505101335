// What auto tone takes: the histogram of a photo of 50 megapixels against reading its bytes once, and against
// libvips where it is installed; then solving.

#include "bench/Compare.h"
#include "presets/AutoTone.h"
#include "presets/Histogram.h"

#include <cstdint>
#include <cstring>
#include <numeric>
#include <random>

#ifdef KELVARA_BENCH_VIPS
#include <vips/vips.h>
#endif

using namespace kelvara;

namespace {

constexpr PixelSize size{8660, 5774};
constexpr int rounds = 15;
constexpr double wanted = 10; // milliseconds

BitmapPtr noise() {
    std::shared_ptr<Bitmap> bitmap = Bitmap::create(size, ColorProfile::displayP3());
    std::mt19937 random{1};
    for (int y = 0; y < size.height; ++y) {
        const auto row = bitmap->row(y);
        for (std::size_t i = 0; i < row.size(); i += 4) {
            const auto pixel = static_cast<std::uint32_t>(random()) | 0xff000000U;
            std::memcpy(&row[i], &pixel, sizeof pixel);
        }
    }
    return bitmap;
}

void compareWithReading(const std::string& title, const BitmapPtr& picture) {
    double least = 1e9; // what an idle machine takes
    volatile std::uint64_t sink = 0;
    bench::compare(
        title, rounds, static_cast<double>(picture->size().pixels()), "pixels",
        [&] { least = std::min(least, bench::seconds([&] { (void)Histogram::of(picture, 512); })); },
        "reading",
        [&] {
            std::uint64_t sum = 0;
            for (std::size_t i = 0; i < picture->byteCount(); i += 8) {
                std::uint64_t word = 0;
                std::memcpy(&word, picture->data() + i, sizeof word);
                sum += word;
            }
            sink = sink + sum;
        },
        {bench::Clock::processor});
    std::printf("%-44s %9.2f ms at least, wanted %.0f\n", title.c_str(), least * 1000, wanted);
}

#ifdef KELVARA_BENCH_VIPS
/// Its own quickest way to the same: every n-th pixel, on one thread.
void vipsHistogram(const Bitmap& picture) {
    VipsImage* in = vips_image_new_from_memory(picture.data(), picture.byteCount(), picture.width(),
                                               picture.height(), 4, VIPS_FORMAT_UCHAR);
    VipsImage *small = nullptr, *histogram = nullptr;
    const int step = picture.width() / 512;
    size_t bytes = 0;
    if (vips_subsample(in, &small, step, step, nullptr) != 0 ||
        vips_hist_find(small, &histogram, nullptr) != 0)
        std::exit(1);
    g_free(vips_image_write_to_memory(histogram, &bytes));
    for (auto* image : {histogram, small, in}) g_object_unref(image);
}
#endif

} // namespace

int main() {
    const auto picture = noise();
    compareWithReading("histogram, 50 megapixels", picture);
#ifdef KELVARA_BENCH_VIPS
    VIPS_INIT("histogram_bench");
    vips_concurrency_set(1);
    vips_cache_set_max(0);
    bench::compare(
        "histogram, 50 megapixels", rounds, static_cast<double>(size.pixels()), "pixels",
        [&] { (void)Histogram::of(picture, 512); }, "vips subsample", [&] { vipsHistogram(*picture); },
        {bench::Clock::processor, 1});
#endif
    const auto histogram = Histogram::of(picture, 512);
    compareWithReading("histogram, 50 megapixels of 16 bits", widened(picture));

    const std::optional preset = DevelopPreset::of(
        "", "", {{"Exposure2012", 0.3}, {"ToneCurvePV2012", std::vector<double>{0, 10, 128, 140, 255, 250}}});
    bench::report("auto tone", rounds, [&] { (void)AutoTone::adjustments(*histogram, preset); });
}
