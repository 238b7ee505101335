// Photos through develop presets: colours against FFmpeg's lut3d, local contrast's blur against libvips where
// they are installed, both on one processor; then what users wait for, on all.

#include "bench/Compare.h"
#include "presets/PresetDrawing.h"
#include "presets/PresetRenderer.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <sched.h>
#include <thread>

#ifdef KELVARA_BENCH_LUT3D
extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/frame.h>
}
#endif
#ifdef KELVARA_BENCH_VIPS
#include <vips/vips.h>
#endif

using namespace kelvara;

namespace {

constexpr PixelSize fullSize{6000, 4000};

/// Like a photo: large shapes, textures, a little noise.
BitmapPtr photo(PixelSize size) {
    std::shared_ptr<Bitmap> bitmap = Bitmap::create(size, ColorProfile::sRGB());
    std::mt19937 random{1};
    for (int y = 0; y < size.height; ++y) {
        const auto row = bitmap->row(y);
        for (int x = 0; x < size.width; ++x) {
            const double u = static_cast<double>(x) / size.width, v = static_cast<double>(y) / size.height;
            const double texture = 20 * std::sin(x * 0.7) * std::sin(y * 0.4);
            for (int c = 0; c < 3; ++c) {
                const double shape = 128 + 100 * std::sin(7 * u + c) * std::cos(5 * v + 2 * c);
                const double noise = static_cast<double>(random() % 9) - 4;
                row[static_cast<std::size_t>(x * 4 + c)] =
                    static_cast<std::uint8_t>(std::clamp(shape + texture + noise, 0.0, 255.0));
            }
            row[static_cast<std::size_t>(x * 4 + 3)] = 255;
        }
    }
    return bitmap;
}

DevelopPreset preset(const PresetSettings& settings) {
    DevelopPreset result;
    result.look = PresetLook{settings};
    return result;
}

PresetSettings colors() {
    return {{"Exposure2012", 0.3},
            {"Contrast2012", 30.0},
            {"Vibrance", 40.0},
            {"WhiteBalance", std::string{"Custom"}},
            {"Temperature", 4800.0},
            {"ColorGradeShadowHue", 220.0},
            {"ColorGradeShadowSat", 30.0},
            {"HueAdjustmentBlue", 20.0},
            {"ToneCurvePV2012", std::vector<double>{0, 10, 64, 55, 192, 205, 255, 250}}};
}

PresetSettings everything(bool withTexture) {
    auto settings = colors();
    settings.insert({{"Clarity2012", 40.0}, {"PostCropVignetteAmount", -30.0}, {"GrainAmount", 30.0}});
    if (withTexture) settings.emplace("Texture", 30.0);
    return settings;
}

/// Work on all processors. What it costs them together hardly depends on what else they do; the least time is
/// what an idle machine takes.
template <typename Work> void report(const std::string& title, double wanted, int rounds, Work&& work) {
    std::vector<double> costs;
    double least = wanted * 1000;
    for (int round = 0; round < rounds; ++round) {
        const auto start = bench::now(bench::Clock::wall);
        costs.push_back(bench::seconds(work, bench::Clock::processor));
        least = std::min(least, bench::now(bench::Clock::wall) - start);
    }
    std::printf("%-44s %9.2f ms at least, wanted %.0f   processors %9.2f ms\n", title.c_str(), least * 1000,
                wanted, bench::median(costs) * 1000);
    std::fflush(stdout);
}

/// For as long as it lives this thread and those it starts run on one processor.
class OneProcessor {
public:
    OneProcessor() {
        ::sched_getaffinity(0, sizeof m_before, &m_before);
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<unsigned>(::sched_getcpu()), &one);
        ::sched_setaffinity(0, sizeof one, &one);
    }
    ~OneProcessor() { ::sched_setaffinity(0, sizeof m_before, &m_before); }
    OneProcessor(const OneProcessor&) = delete;
    OneProcessor& operator=(const OneProcessor&) = delete;

private:
    cpu_set_t m_before;
};

#ifdef KELVARA_BENCH_LUT3D
/// FFmpeg's filter on one thread, with the same cube.
class Lut3d {
public:
    Lut3d(const ColorCube& cube, const Bitmap& picture)
        : m_file{std::filesystem::temp_directory_path() / "kelvara-bench.cube"} {
        std::ofstream file{m_file};
        file << "LUT_3D_SIZE " << ColorCube::points << "\n";
        for (std::size_t i = 0; i < ColorCube::entries; ++i) {
            const auto* entry = &cube.values()[i * 4];
            file << entry[2] << " " << entry[1] << " " << entry[0] << "\n";
        }
        file.close();
        m_graph->nb_threads = 1;
        char source[128];
        std::snprintf(source, sizeof source, "video_size=%dx%d:pix_fmt=bgr0:time_base=1/25", picture.width(),
                      picture.height());
        const auto filter = "file=" + m_file.string() + ":interp=trilinear";
        AVFilterContext* lut = nullptr;
        check(avfilter_graph_create_filter(&m_source, avfilter_get_by_name("buffer"), "in", source, nullptr,
                                           m_graph));
        check(avfilter_graph_create_filter(&lut, avfilter_get_by_name("lut3d"), "lut", filter.c_str(),
                                           nullptr, m_graph));
        check(avfilter_graph_create_filter(&m_sink, avfilter_get_by_name("buffersink"), "out", nullptr,
                                           nullptr, m_graph));
        check(avfilter_link(m_source, 0, lut, 0));
        check(avfilter_link(lut, 0, m_sink, 0));
        check(avfilter_graph_config(m_graph, nullptr));
        m_frame->format = AV_PIX_FMT_BGR0;
        m_frame->width = picture.width();
        m_frame->height = picture.height();
        check(av_frame_get_buffer(m_frame, 0));
        for (int y = 0; y < picture.height(); ++y)
            std::memcpy(m_frame->data[0] + y * m_frame->linesize[0], picture.row(y).data(),
                        picture.rowBytes());
    }
    ~Lut3d() {
        av_frame_free(&m_frame);
        av_frame_free(&m_result);
        avfilter_graph_free(&m_graph);
        std::filesystem::remove(m_file);
    }
    Lut3d(const Lut3d&) = delete;
    Lut3d& operator=(const Lut3d&) = delete;

    void run() {
        check(av_buffersrc_add_frame_flags(m_source, m_frame, AV_BUFFERSRC_FLAG_KEEP_REF));
        check(av_buffersink_get_frame(m_sink, m_result));
        av_frame_unref(m_result);
    }

private:
    static void check(int result) {
        if (result < 0) std::exit(1);
    }

    std::filesystem::path m_file;
    AVFilterGraph* m_graph = avfilter_graph_alloc();
    AVFilterContext* m_source = nullptr;
    AVFilterContext* m_sink = nullptr;
    AVFrame* m_frame = av_frame_alloc();
    AVFrame* m_result = av_frame_alloc();
};
#endif

void benchColors(const BitmapPtr& source) {
    const auto tried = preset(colors());
    const ColorCube cube{tried};
    const auto draw = [&] { (void)drawn(tried, cube, *source, Depth::eight, {}); };
    const auto pixels = static_cast<double>(source->size().pixels());
    {
        const OneProcessor one;
        std::vector<std::uint8_t> copy(source->byteCount());
        bench::compare("cube, one processor", 7, pixels, "pixels", draw, "memcpy",
                       [&] { std::memcpy(copy.data(), source->data(), copy.size()); },
                       {bench::Clock::processor});
#ifdef KELVARA_BENCH_LUT3D
        Lut3d peer{cube, *source};
        bench::compare("cube, one processor", 7, pixels, "pixels", draw, "lut3d", [&] { peer.run(); },
                       {bench::Clock::processor, 4});
#endif
    }
    const auto drawOnOne = [&] {
        const OneProcessor one;
        draw();
    };
    double least = 1e9, leastOnOne = 1e9; // what an idle machine takes
    for (int round = 0; round < 25; ++round) {
        least = std::min(least, bench::seconds(draw));
        leastOnOne = std::min(leastOnOne, bench::seconds(drawOnOne));
    }
    std::printf("%-44s %9.2f ms   one %9.2f ms   speed ratio %.2f, wanted 1.90 of two\n",
                "cube, all processors", least * 1000, leastOnOne * 1000, leastOnOne / least);
}

void benchLocalContrast([[maybe_unused]] const BitmapPtr& source) {
    const OneProcessor one;
    const auto tried = preset({{"Clarity2012", 50.0}});
    const ColorCube cube{tried};
    const auto draw = [&] { (void)drawn(tried, cube, *source, Depth::eight, {}); };
#ifdef KELVARA_BENCH_VIPS
    VIPS_INIT("preset_bench");
    vips_concurrency_set(1);
    vips_cache_set_max(0);
    const double factor = source->size().longestSide() * 0.02 * 0.125;
    const auto peer = [&] {
        VipsImage* in = vips_image_new_from_memory(source->data(), source->byteCount(), source->width(),
                                                   source->height(), 4, VIPS_FORMAT_UCHAR);
        VipsImage *reduced = nullptr, *blurred = nullptr, *kept = nullptr, *large = nullptr;
        size_t bytes = 0;
        if (vips_resize(in, &reduced, 1 / factor, nullptr) != 0 ||
            vips_gaussblur(reduced, &blurred, 8, nullptr) != 0 || !(kept = vips_image_copy_memory(blurred)) ||
            vips_resize(kept, &large, factor, "kernel", VIPS_KERNEL_LINEAR, nullptr) != 0)
            std::exit(1);
        g_free(vips_image_write_to_memory(large, &bytes));
        for (auto* image : {large, kept, blurred, reduced, in}) g_object_unref(image);
    };
    bench::compare("clarity (vips: only its blur), one processor", 7,
                   static_cast<double>(source->size().pixels()), "pixels", draw, "vips", peer,
                   {bench::Clock::processor, 3});
#else
    report("clarity, one processor", 0, 7, draw);
#endif
}

} // namespace

int main() {
    const auto source = photo(fullSize);
    benchColors(source);
    benchLocalContrast(source);

    const auto apply = [](const DevelopPreset& tried, const BitmapPtr& picture) {
        (void)PresetRenderer::apply(tried, picture, Depth::eight, {});
    };
    const auto preview = photo({2048, 1365}), tile = photo({256, 171});
    const auto withoutTexture = preset(everything(false)), all = preset(everything(true));
    report("build a cube", 8, 21, [&] { const ColorCube cube{all}; });
    report("2048 px, effects", 30, 21, [&] { apply(withoutTexture, preview); });
    report("24 megapixels, everything", 400, 9, [&] { apply(all, source); });
    report("60 tiles of 256 px, new cubes", 250, 7, [&] {
        std::array<std::jthread, 2> threads;
        for (auto& thread : threads)
            thread = std::jthread{[&] {
                for (int i = 0; i < 30; ++i) apply(all, tile);
            }};
    });
}
