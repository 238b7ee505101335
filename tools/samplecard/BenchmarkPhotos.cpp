#include "samplecard/BenchmarkPhotos.h"

#include "samplecard/CardPhotos.h"
#include "samplecard/DNG.h"
#include "samplecard/HEIC.h"
#include "samplecard/JPEG.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <future>
#include <memory>

namespace kelvara::samplecard {
namespace {

constexpr std::int64_t firstTime = 1717200000; // 2024-06-01 00:00:00 UTC
constexpr std::size_t mostPictures = 6;

/// An encoded photo whose capture dates can be exchanged: they have a fixed width in EXIF.
struct Negative {
    std::string bytes;
    std::vector<std::size_t> dates;
};

// A camera writes a good third of a byte for each pixel of a JPEG: 8.7 MB for 24 megapixels.
std::string jpegOfUsualSize(const Picture& picture, const Shot& shot) {
    const double wanted = static_cast<double>(picture.samples.size()) / 3 * 0.3625;
    JPEGOptions options;
    std::string best;
    for (int low = 75, high = 98; low <= high;) {
        options.quality = (low + high) / 2;
        std::string bytes = photoJPEG(picture, shot, options);
        const auto missed = [&](const std::string& candidate) {
            return std::fabs(static_cast<double>(candidate.size()) - wanted);
        };
        if (static_cast<double>(bytes.size()) < wanted)
            low = options.quality + 1;
        else
            high = options.quality - 1;
        if (best.empty() || missed(bytes) < missed(best)) best = std::move(bytes);
    }
    return best;
}

Negative negativeOf(const BenchmarkOptions& options, std::size_t index) {
    constexpr std::array scenes{Scene::mountains, Scene::forest, Scene::dunes,
                                Scene::lake,      Scene::flower, Scene::hills};
    const Scene scene = scenes[index % scenes.size()];
    const auto seed = static_cast<std::uint32_t>(60 + index);
    const int width =
        std::max(64, static_cast<int>(std::lround(std::sqrt(options.megapixels * 1e6 * 1.5) / 16)) * 16);
    const int height = width * 2 / 3 / 2 * 2;
    const Picture picture = paint(scene, width, height, seed);
    const Shot shot = plausibleShot(scene, seed, firstTime);
    Negative negative;
    switch (options.kind) {
    case BenchmarkOptions::Kind::jpeg:
        negative.bytes = jpegOfUsualSize(picture, shot);
        break;
    case BenchmarkOptions::Kind::dng:
        negative.bytes = encodeDNG(picture, shot, {});
        break;
    case BenchmarkOptions::Kind::heic:
        negative.bytes = encodeHEIC(picture, shot, {});
        break;
    }
    const std::string date = exifDate(firstTime);
    for (std::size_t at = negative.bytes.find(date); at != std::string::npos;
         at = negative.bytes.find(date, at + date.size()))
        negative.dates.push_back(at);
    return negative;
}

std::string printOf(const Negative& negative, std::int64_t time) {
    std::string bytes = negative.bytes;
    const std::string date = exifDate(time);
    for (const std::size_t at : negative.dates) bytes.replace(at, date.size(), date);
    return bytes;
}

const char* extensionOf(BenchmarkOptions::Kind kind) {
    switch (kind) {
    case BenchmarkOptions::Kind::dng:
        return "DNG";
    case BenchmarkOptions::Kind::heic:
        return "HEIC";
    case BenchmarkOptions::Kind::jpeg:
        break;
    }
    return "JPG";
}

} // namespace

std::vector<CardJob> benchmarkJobs(const BenchmarkOptions& options) {
    const std::size_t count = std::min(mostPictures, static_cast<std::size_t>(std::max(0, options.photos)));
    std::vector<std::future<Negative>> developing;
    for (std::size_t i = 0; i < count; ++i)
        developing.push_back(std::async(std::launch::async, negativeOf, options, i));
    auto negatives = std::make_shared<std::vector<Negative>>();
    for (auto& negative : developing) negatives->push_back(negative.get());
    std::vector<CardJob> jobs;
    for (int i = 0; i < options.photos; ++i) {
        jobs.emplace_back([negatives, i, extension = extensionOf(options.kind)] {
            const std::int64_t time = firstTime + i * 7LL;
            const Negative& negative = (*negatives)[static_cast<std::size_t>(i) % negatives->size()];
            const std::string path =
                fmt::format("DCIM/{}KELVA/KEL_{:04}.{}", 100 + i / 500, 1 + i % 9999, extension);
            return std::vector<CardFile>{{path, printOf(negative, time), time, false}};
        });
    }
    return jobs;
}

} // namespace kelvara::samplecard
